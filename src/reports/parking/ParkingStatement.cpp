#include "reports/parking/ParkingStatement.h"

#include "core/ErrorTrap.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"
#include "frame/FeeColumnReader.h"
#include "frame/FeeItemReader.h"
#include "frame/FeeSql.h"
#include "frame/Pager.h"
#include "frame/SplitRatios.h"
#include "frame/StatementTotals.h"

namespace yunqi {

using namespace ValueRules;

namespace {

using StatementTotals::LabelField;

const QString kTotal = QStringLiteral("合计");
const QString kOf = QStringLiteral("其中");
const QString kRangeJoin = QStringLiteral(" - ");

const DetailHeaderPlan& Plan() {
    static const DetailHeaderPlan plan{
        {
            {QStringLiteral("序"), QStringLiteral("序"), 800, true},
            {QStringLiteral("发票号"), QStringLiteral("发票号"), 2500, true},
            {QStringLiteral("电子发票号"), QStringLiteral("电子发票号"), 2500, true},
        },
        {{QStringLiteral("合计"), QStringLiteral("合计"), 1400, true}},
        1400,
        false,
    };
    return plan;
}

// The closing loops count rows in 16 bits.
constexpr int kMaxCounter = 32767;

// Blanks cut at both ends; other white space stays.
QString TrimBlanks(const QString& text) {
    int first = 0, last = int(text.size());
    while (first < last && text[first] == QLatin1Char(' ')) ++first;
    while (last > first && text[last - 1] == QLatin1Char(' ')) --last;
    return text.mid(first, last - first);
}

// One item's lines paid in the range, summed per ticket number: the net
// amount times the 物业 ratio, the net amount, the tax.
QString ItemSums(const FeeItem& item, const FlexGrid& ratios,
                 const StatementConditions& conditions) {
    QString s;
    // The last matching row of the ratios wins.
    for (int r : SplitRatios::RowsOf(ratios, item.ItemCode)) {
        s = QStringLiteral("Select sum((") + NetAmountSql() + QStringLiteral(") * ") +
            SplitRatios::RatioText(ratios, r) + QStringLiteral(") as ") + item.ItemName +
            QStringLiteral("WY") + QStringLiteral(",");
        s += QStringLiteral(" sum(") + NetAmountSql() + QStringLiteral(") As ") + item.ItemName +
             QStringLiteral("KFS") + QStringLiteral(",");
    }
    s += QStringLiteral(" sum(票据开票数据.税额) as ") + item.TaxAlias;
    s += QStringLiteral(", 票据开票数据.票据编号");
    s += FeeLinesFrom();
    s += QStringLiteral(" Where 作废日期 Is Null ");
    s += QStringLiteral(" And Convert(Char(8),收款日期,112) Between '") +
         FormatYmd(conditions.From) + QStringLiteral("' And '") + FormatYmd(conditions.To) +
         QStringLiteral("'");
    s += ItemLinesOf(item, conditions.DeptCode);
    s += QStringLiteral(" group by 票据开票数据.票据编号 ");
    return s;
}

}  // namespace

ParkingStatement::ParkingStatement(DatabaseSession& session) : TicketStatement(session, Plan()) {}

QString ParkingStatement::FeeItemSql(const StatementConditions& conditions) {
    QString sql = FeeItemSelect();
    sql += QStringLiteral(" where CONVERT(char(8),开票日期,112) between '") +
           FormatYmd(conditions.From) + QStringLiteral("' and '") + FormatYmd(conditions.To) +
           QStringLiteral("'");
    sql += QStringLiteral(" and 作废日期 is null ");
    sql += QStringLiteral(" And 开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'");
    sql += QStringLiteral(" And 收费类别 Like '%停车%'");
    sql += QStringLiteral(" group by  setupsfxm.税率,收费项目代号,xm,收费类别,显示名称");
    sql += QStringLiteral(" order by 收费项目代号");
    return sql;
}

Trapped ParkingStatement::ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                                          FlexGrid& statementGrid) {
    return RunTrapped(TrapForm::TrapBlankBeforePositive,
                      [&] { LoadItems(FeeItemSql(conditions), ratios, statementGrid); });
}

QString ParkingStatement::StatisticsSql(const StatementConditions& conditions,
                                        const FlexGrid& ratios) const {
    std::vector<QString> sub(1);
    for (std::size_t i = 1; i < feeItems_.size(); ++i)
        sub.push_back(ItemSums(feeItems_[i], ratios, conditions));

    // The tickets, with each item's sums beside them.
    QString sql = QStringLiteral(
        "Select 票据.票据编号 ,票据.入库单编号 ,  收款日期, 票据.金额, 收款方式, 交易订单号 ");
    sql += FeeColumnsSelect(feeItems_, ratios);
    sql += QStringLiteral(" From 票据");
    sql += QStringLiteral(" inner join 票据入库单 on 票据.入库单编号 =票据入库单.入库单编号");
    sql += JoinDerivedTables(sub, false);
    sql +=
        QStringLiteral(" Where 票据.开票部门编号 ='") + conditions.DeptCode + QStringLiteral("'");
    sql += QStringLiteral(" And (") + PresenceCondition(feeItems_) + QStringLiteral(")");
    sql += QStringLiteral(" Order by 收款日期, 票据.入库单编号, 票据.票据编号, 金额 ");
    return sql;
}

PagedStatement::RunOutcome ParkingStatement::RunStatistics(const StatementConditions& conditions,
                                                           const FlexGrid& ratios, int pageSize) {
    // The fields of a ticket by position; the money follows from position 6.
    enum { fNo = 0, fNote = 1, fPaid = 2, fMethod = 4, fOrder = 5 };
    session_.SetCommandTimeout(0);
    Recordset rs = session_.Open(StatisticsSql(conditions, ratios));
    const int n = feeColumnCount_;
    rows_ = DetailRows(n);
    const FeeColumnReader fees(rs, 5, n);
    std::vector<double> ticket(n);

    // A batch: the tickets of one stock-in note paid at one moment, which the
    // statement's order brings together.
    QString groupKey;
    int r = 0;
    while (!rs.AtEnd()) {
        const QString key =
            TextOrEmpty(rs.Value(fNote)) + QLatin1Char('|') + TextOrEmpty(rs.Value(fPaid));
        if (key != groupKey) {
            groupKey = key;
            r = rows_.Append();
            rows_.SetPayMethod(r, TrimBlanks(TextOrEmpty(rs.Value(fMethod))));
        }
        const QString no = TextOf(rs.Value(fNo));
        const DetailRows::Kind kind = rs.IsNull(fOrder) ? kPaper : kElectronic;
        const QString& range = rows_.TicketNo(r);
        if (range.isEmpty()) {
            rows_.SetTicket(r, no, kind);
            fees.Read(rs, rows_.Fees(r));
        } else {
            const int cut = range.indexOf(kRangeJoin);
            rows_.SetTicket(r, (cut < 0 ? range : range.left(cut)) + kRangeJoin + no, kind);
            fees.Read(rs, ticket);
            const auto amounts = rows_.Fees(r);
            for (int j = 0; j < n; ++j) amounts[j] += ticket[j];
        }
        rows_.SetRowTotal(r, FeeColumnReader::Total(rows_, r));
        rs.MoveNext();
    }

    const int batches = rows_.UpperBound();
    if (batches == 0) return false;
    if (batches > kMaxCounter) throw RuntimeError::Overflow();

    StatementTotals::AppendTotalRow(rows_, LabelField::TicketNo, kTotal);
    // The breakdown's sweep runs over the total row as well.
    if (rows_.UpperBound() > kMaxCounter) throw RuntimeError::Overflow();
    StatementTotals::AppendBreakdown(rows_, session_, {LabelField::TicketNo, true});

    pageCount_ = Pager::PageCountOf(rows_.UpperBound(), pageSize);
    return true;
}

bool ParkingStatement::IsSummaryRow(int r) const {
    const QString& range = rows_.TicketNo(r);
    return range.isEmpty() || range == kOf || range == kTotal;
}

void ParkingStatement::WriteRow(GridRow& row, int r, const TextMeasure&) const {
    const int n = feeColumnCount_;
    row.SetColAlignment(0, FlexGrid::AlignCenterCenter);
    if (IsSummaryRow(r)) {
        // Amounts stay off the summary rows; the method stands right-aligned
        // beside the total.
        row.SetColAlignment(1, FlexGrid::AlignCenterCenter);
        row.SetText(1, rows_.TicketNo(r));
        row.SetText(n + 2, rows_.PayMethod(r));
        row.SetCellAlignment(n + 2, FlexGrid::AlignRightCenter);
        row.SetText(n + 3, Format0_00(rows_.RowTotal(r)));
        return;
    }
    const int col = rows_.TicketKind(r) == kPaper ? 1 : 2;
    row.SetColAlignment(col, FlexGrid::AlignCenterCenter);
    row.SetText(col, rows_.TicketNo(r));
    for (int j = 1; j <= n; ++j) row.SetText(j + 2, Format0_00(rows_.FeeAmount(r, j)));
    row.SetText(n + 3, Format0_00(rows_.RowTotal(r)));
}

}  // namespace yunqi
