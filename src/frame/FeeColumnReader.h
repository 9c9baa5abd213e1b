#pragma once

#include <QString>
#include <span>
#include <vector>

#include "db/Recordset.h"
#include "frame/DetailRows.h"

namespace yunqi {

// Reads the money columns of a statement's result, one ticket at a time.
// Amounts are rounded to the cent here and only here; a 开发商 column (its
// name holds "KFS") gets the whole less the rounded 物业 share of the column
// after it. A report sets a row's amounts from them, or adds them up per batch.
class FeeColumnReader {
  public:
    // The money columns are at positions base + 1 .. base + count.
    FeeColumnReader(const Recordset& rs, int base, int count);

    int Count() const { return int(isDeveloper_.size()) - 1; }
    // The current record's amounts: amounts[j - 1] for money column j. An
    // amount beyond the number forms raises Overflow naming its ticket.
    void Read(const Recordset& rs, std::span<double> amounts) const;
    // The sum of a row's money columns, in column order.
    static double Total(const DetailRows& rows, int r);

  private:
    void ReadAmounts(const Recordset& rs, std::span<double> amounts) const;

    int base_;
    int ticket_ = -1;  // 票据编号, when the result has it
    std::vector<char> isDeveloper_;
};

// 付款人 and, when present, a blank and 地址; CR LF pairs removed. A Null
// 付款人 is an invalid use of Null.
QString PayerTextOf(const QVariant& payer, const QVariant& address);

}  // namespace yunqi
