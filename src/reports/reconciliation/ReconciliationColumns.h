#pragma once

#include <QString>

namespace yunqi {

// Where the reconciliation's figures stand, with n fee items: 3 to 7 the
// invoices and receipts, 8 to n + 7 the items, then finance's subtotal, the
// two pre-invoiced sums, the difference and the note.
namespace ReconciliationColumns {

inline const QString kSubtotal = QStringLiteral("小计");
inline const QString kTotal = QStringLiteral("合计");

inline int FinanceColumn(int n) { return n + 8; }
inline int CollectedColumn(int n) { return n + 9; }
inline int UncollectedColumn(int n) { return n + 10; }
inline int DifferenceColumn(int n) { return n + 11; }

}  // namespace ReconciliationColumns

}  // namespace yunqi
