#pragma once

#include <QString>
#include <QtGlobal>

namespace yunqi {

// What a demo ledger holds, for the summary line.
struct DemoSummary {
    int tickets = 0;
    int lines = 0;
    QString largestDepartment;
};

// Writes a demo ledger of the given number of tickets: the embedded schema
// with its indexes, and data of the shape an office's ledger has (several
// departments and years, ordinary and parking items, voided, replaced,
// negative, pre-invoiced, paid-later, electronic and paper tickets). Tickets
// are numbered as printed books are: each stock-in note holds a contiguous
// range of its type's running number, unique across the ledger, and a
// household's several tickets are issued and paid at one counter moment.
// Every department writes a deposit's receipt each month it works, and the
// books reconcile every month but one: department 02 wrote a receipt for a
// taxed fee in March 2024. The same seed gives the same file. The file
// appears only when complete (see StagedOutput); an existing file is replaced
// then, and the command refuses one without --force. Throws RuntimeError.
DemoSummary WriteDemoDatabase(const QString& file, int tickets, quint64 seed);

}  // namespace yunqi
