#include "frame/FeeColumnReader.h"

#include "core/RuntimeError.h"
#include "core/ValueRules.h"

namespace yunqi {

using ValueRules::Round2;

FeeColumnReader::FeeColumnReader(const Recordset& rs, int base, int count) : base_(base) {
    isDeveloper_.resize(count + 1, 0);
    for (int j = 1; j <= count; ++j)
        isDeveloper_[j] = rs.FieldName(base + j).contains(QStringLiteral("KFS"));
    for (int i = 0; i < rs.FieldCount() && ticket_ < 0; ++i)
        if (rs.FieldName(i).compare(QStringLiteral("票据编号"), Qt::CaseInsensitive) == 0)
            ticket_ = i;
}

void FeeColumnReader::Read(const Recordset& rs, std::span<double> amounts) const {
    try {
        ReadAmounts(rs, amounts);
    } catch (const RuntimeError& e) {
        // An amount the number forms can't hold: the ticket that has it.
        if (ticket_ < 0) throw;
        throw ValueRules::NamingTheValue(
            e, QStringLiteral("票据编号 ") + ValueRules::TextOrEmpty(rs.Value(ticket_)));
    }
}

void FeeColumnReader::ReadAmounts(const Recordset& rs, std::span<double> amounts) const {
    for (int j = 1; j <= Count(); ++j) {
        const int pos = base_ + j;
        double& amount = amounts[j - 1];
        if (rs.IsNull(pos)) {
            amount = 0;
            continue;
        }
        const double c = ValueRules::NumberOf(rs.Value(pos));
        if (!isDeveloper_[j]) {
            amount = Round2(c);
        } else {
            const double t =
                rs.IsNull(pos + 1) ? 0 : Round2(ValueRules::NumberOf(rs.Value(pos + 1)));
            amount = Round2(c - t);
        }
    }
}

double FeeColumnReader::Total(const DetailRows& rows, int r) {
    double total = 0;
    for (int j = 1; j <= rows.FeeColumnCount(); ++j) total += rows.FeeAmount(r, j);
    return total;
}

QString PayerTextOf(const QVariant& payer, const QVariant& address) {
    QString text = ValueRules::RemoveCrLf(ValueRules::TextOf(payer));
    if (!address.isNull() && address.isValid())
        text += ' ' + ValueRules::RemoveCrLf(ValueRules::TextOf(address));
    return text;
}

}  // namespace yunqi
