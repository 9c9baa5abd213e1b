#include "reports/reconciliation/ReconciliationStatement.h"

#include <vector>

#include "core/ErrorTrap.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/Conditions.h"
#include "frame/FeeItemReader.h"
#include "reports/reconciliation/ReconciliationColumns.h"
#include "reports/reconciliation/ReconciliationWorkbook.h"

namespace yunqi {

using namespace ValueRules;
using namespace ReconciliationColumns;

namespace {

const QString kZero = QStringLiteral("0.00");

int AddRow(FlexGrid& grid) {
    grid.SetRows(grid.Rows() + 1);
    grid.SetRow(grid.Rows() - 1);
    return grid.Row();
}

QString Amount(const Recordset& rs, int field) {
    return rs.IsNull(field) ? kZero : Format0_00(NumberOf(rs.Value(field)));
}

// The months of the run, as the combo texts give them.
std::vector<QString> MonthKeys(const StatementConditions& conditions) {
    std::vector<QString> keys;
    for (long m = RoundHalfEven(Val(conditions.FromMonth));
         m <= RoundHalfEven(Val(conditions.ToMonth)); ++m)
        keys.push_back(conditions.Year + Format00(m));
    return keys;
}

}  // namespace

QString ReconciliationStatement::LoadInvoiceTypes() {
    Recordset rs = session_.Open(QStringLiteral("Select * From 票据类型 ") +
                                 QStringLiteral(" where 定额=0 order by 票据类型代号 "));
    QString all;
    special_.clear();
    ordinary_.clear();
    receipt_.clear();
    const int fCode = rs.IndexOf(QStringLiteral("票据类型代号"));
    const int fName = rs.IndexOf(QStringLiteral("票据类型"));
    auto append = [](QString& list, const QString& code) {
        if (!list.isEmpty()) list += QLatin1Char(',');
        list += QLatin1Char('\'') + code + QLatin1Char('\'');
    };
    for (; !rs.AtEnd(); rs.MoveNext()) {
        const QString code = TextOf(rs.Value(fCode));
        const QString name = TextOrEmpty(rs.Value(fName));
        append(all, code);
        if (name.contains(QStringLiteral("增值税专用发票"))) append(special_, code);
        if (name.contains(QStringLiteral("增值税普通发票"))) append(ordinary_, code);
        if (name == QStringLiteral("收据")) append(receipt_, code);
    }
    return all;
}

void ReconciliationStatement::SetTypeCodes(QString special, QString ordinary, QString receipt) {
    special_ = std::move(special);
    ordinary_ = std::move(ordinary);
    receipt_ = std::move(receipt);
}

QString ReconciliationStatement::TitleCaption(const QString& entry, const QString& year) const {
    return year + QStringLiteral("年度") + QStringLiteral("【") + Conditions::DepartmentOf(entry) +
           QStringLiteral("】票据核对表");
}

Trapped ReconciliationStatement::ExtractFeeItems(const StatementConditions& conditions,
                                                 FlexGrid& statementGrid) {
    feeItems_ = FeeItemList(1);
    return RunTrapped(TrapForm::Trap, [&] {
        session_.SetCommandTimeout(0);
        Recordset rs = session_.Open(FeeItemSql(conditions));
        feeItems_ = ReadFeeItems(rs);
        BuildGridHeader(statementGrid);
    });
}

void ReconciliationStatement::FillMonthlyRows(const StatementConditions& conditions,
                                              FlexGrid& grid) {
    const int n = int(feeItems_.size()) - 1;
    const int finance = FinanceColumn(n);
    for (const QString& month : MonthKeys(conditions)) {
        std::vector<double> subtotals(grid.Cols(), 0.0);
        session_.SetCommandTimeout(0);
        Recordset rs = session_.Open(MonthSql(conditions, month));
        const int fRate = rs.IndexOf(QStringLiteral("S税率"));
        const int fSpecial = rs.IndexOf(QStringLiteral("专用发票"));
        const int fSpecialTax = rs.IndexOf(QStringLiteral("专发税额"));
        const int fOrdinary = rs.IndexOf(QStringLiteral("普通发票"));
        const int fOrdinaryTax = rs.IndexOf(QStringLiteral("普发税额"));
        const int fReceipt = rs.IndexOf(QStringLiteral("S收据"));
        for (; !rs.AtEnd(); rs.MoveNext()) {
            // 100 stands for a Null rate; with it goes the only receipt sum.
            const double rate = NumberOf(rs.Value(fRate));
            if (rate == 100) continue;
            const int r = AddRow(grid);
            for (int c = 0; c <= 2; ++c) grid.SetColAlignment(c, FlexGrid::AlignCenterCenter);
            grid.SetTextMatrix(r, 0, QString::number(r - 1));
            grid.SetTextMatrix(r, 1, month);
            grid.SetTextMatrix(r, 2, rate == 0 ? QStringLiteral("0") : DoubleText(rate));
            // Net amounts: the sum less its tax.
            grid.SetTextMatrix(r, 3,
                               rs.IsNull(fSpecial) ? kZero
                                                   : Format0_00(NumberOf(rs.Value(fSpecial)) -
                                                                NumberOf(rs.Value(fSpecialTax))));
            grid.SetTextMatrix(r, 4, Amount(rs, fSpecialTax));
            grid.SetTextMatrix(r, 5,
                               rs.IsNull(fOrdinary) ? kZero
                                                    : Format0_00(NumberOf(rs.Value(fOrdinary)) -
                                                                 NumberOf(rs.Value(fOrdinaryTax))));
            grid.SetTextMatrix(r, 6, Amount(rs, fOrdinaryTax));
            grid.SetTextMatrix(r, 7, Amount(rs, fReceipt));
            // The items by position: their aliases may repeat a column name.
            for (int i = 1; i <= n; ++i) grid.SetTextMatrix(r, i + 7, Amount(rs, i + 5));
            for (int i = 1; i <= n; ++i)
                grid.SetTextMatrix(
                    r, finance,
                    Format0_00(Val(grid.TextMatrix(r, finance)) + Val(grid.TextMatrix(r, i + 7))));
            for (int c = 3; c <= finance; ++c) subtotals[c] += Val(grid.TextMatrix(r, c));
        }
        if (subtotals[3] + subtotals[4] + subtotals[5] + subtotals[6] + subtotals[7] == 0) continue;
        const int r = AddRow(grid);
        grid.SetTextMatrix(r, 0, QString::number(r - 1));
        grid.SetTextMatrix(r, 1, month);
        grid.SetTextMatrix(r, 2, kSubtotal);
        for (int c = 3; c <= finance; ++c) {
            grid.SetTextMatrix(r, c, Format0_00(subtotals[c]));
            grid.SetCellBackColorAt(r, c, kSubtotalColor);
        }
    }
}

Trapped ReconciliationStatement::FillPreInvoiced(const StatementConditions& conditions,
                                                 FlexGrid& grid, bool collected) {
    const int n = int(feeItems_.size()) - 1;
    const int column = collected ? CollectedColumn(n) : UncollectedColumn(n);
    const QString codes = FeeCodeList();
    return RunTrapped(TrapForm::Trap, [&] {
        for (const QString& month : MonthKeys(conditions)) {
            session_.SetCommandTimeout(0);
            Recordset rs = session_.Open(collected ? CollectedSql(conditions, codes, month)
                                                   : UncollectedSql(conditions, codes, month));
            // One sum for all rates: it stands on the month's 小计 row, if any.
            for (; !rs.AtEnd(); rs.MoveNext())
                for (int r = 2; r < grid.Rows(); ++r)
                    if (grid.TextMatrix(r, 1) == month && grid.TextMatrix(r, 2) == kSubtotal) {
                        grid.SetTextMatrix(r, column, Amount(rs, 0));
                        grid.SetCellBackColorAt(r, column, kSubtotalColor);
                    }
        }
    });
}

Trapped ReconciliationStatement::FillCollectedPreInvoiced(const StatementConditions& conditions,
                                                          FlexGrid& statementGrid) {
    return FillPreInvoiced(conditions, statementGrid, true);
}

Trapped ReconciliationStatement::FillUncollectedPreInvoiced(const StatementConditions& conditions,
                                                            FlexGrid& statementGrid) {
    return FillPreInvoiced(conditions, statementGrid, false);
}

Trapped ReconciliationStatement::RunReconciliation(const StatementConditions& conditions,
                                                   FlexGrid& grid) {
    const int n = int(feeItems_.size()) - 1;
    grid.SetRows(2);
    FillMonthlyRows(conditions, grid);
    Trapped trapped = FillCollectedPreInvoiced(conditions, grid);
    Trapped later = FillUncollectedPreInvoiced(conditions, grid);
    if (!trapped) trapped = std::move(later);

    // The difference of each month, from the texts as they stand; the
    // comparison with 0 is exact.
    const int cols = grid.Cols();
    for (int r = 2; r < grid.Rows(); ++r) {
        if (grid.TextMatrix(r, 2) != kSubtotal) continue;
        auto v = [&](int c) { return Val(grid.TextMatrix(r, c)); };
        const double d = v(3) + v(4) + v(5) + v(6) + v(7) - v(FinanceColumn(n)) +
                         v(CollectedColumn(n)) - v(UncollectedColumn(n));
        grid.SetTextMatrix(r, DifferenceColumn(n), d == 0 ? kZero : Format0_00(d));
        grid.SetCellBackColorAt(r, DifferenceColumn(n), kSubtotalColor);
    }

    std::vector<double> totals(cols, 0.0);
    for (int r = 2; r < grid.Rows(); ++r)
        if (grid.TextMatrix(r, 2) == kSubtotal)
            for (int c = 3; c <= cols - 3; ++c) totals[c] += Val(grid.TextMatrix(r, c));
    if (totals[3] + totals[4] + totals[5] + totals[6] + totals[7] != 0) {
        const int r = AddRow(grid);
        grid.SetTextMatrix(r, 0, QString::number(r - 1));
        grid.SetTextMatrix(r, 1, kTotal);
        for (int c = 3; c <= UncollectedColumn(n); ++c) {
            grid.SetTextMatrix(r, c, Format0_00(totals[c]));
            grid.SetCellBackColorAt(r, c, kTotalColor);
        }
    }
    return trapped;
}

void ReconciliationStatement::WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                                         const WorkbookContext& context) const {
    WriteReconciliationSheet(sheet, steps, context);
}

}  // namespace yunqi
