#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "cli/BatchJob.h"

namespace yunqi {

// Where a statement's books do not agree: from its CSV, every row whose
// difference (the column headed 核对结果 over 差额) is not zero, as month,
// rate and the difference as written, in the grid's order. A "-0.00" is
// rounding and agrees. A statement without that column has none.
QList<QStringList> MismatchesOf(const QByteArray& csv);

// DIR/mismatches.csv: "dept,month,rate,difference", one line a mismatching
// row in the order of the jobs; the header alone when all agree.
QString MismatchesCsv(const std::vector<BatchJob>& jobs);

// How many departments have a mismatching row.
int DepartmentsNotReconciled(const std::vector<BatchJob>& jobs);

}  // namespace yunqi
