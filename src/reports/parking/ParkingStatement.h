#pragma once

#include <QString>

#include "frame/TicketStatement.h"

namespace yunqi {

// The parking fee statement: parking money of a department by payment date,
// one row per batch of tickets of a stock-in note paid together, split
// between developer and property company. Computed without widgets; the
// window and the companion share it.
//
// Rows: TicketNo holds the ticket range ("A - B"), or "合计" / "其中" on the
// appended rows; a batch row's kind is kPaper or kElectronic.
class ParkingStatement : public TicketStatement {
  public:
    static constexpr DetailRows::Kind kPaper = DetailRows::Kind::Ordinary;         // 纸质
    static constexpr DetailRows::Kind kElectronic = DetailRows::Kind::Electronic;  // 电子

    explicit ParkingStatement(DatabaseSession& session);
    std::unique_ptr<PagedStatement> Clone() const override {
        return std::make_unique<ParkingStatement>(*this);
    }

    // Has an error trap: a failure is shown and leaves the items read so far.
    Trapped ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                            FlexGrid& statementGrid) override;
    // More than 32,767 rows: Overflow, as the closing loops count in 16 bits.
    RunOutcome RunStatistics(const StatementConditions& conditions, const FlexGrid& ratios,
                             int pageSize) override;
    void WriteRow(GridRow& row, int r, const TextMeasure& measure) const override;
    // In ParkingWorkbook.cpp: the workbook apart from the computation.
    void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                    const WorkbookContext& context) const override;

    // The SQL texts, exactly as they are sent.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString StatisticsSql(const StatementConditions& conditions, const FlexGrid& ratios) const;

    // A row of totals: "合计", "其中" or a further breakdown row.
    bool IsSummaryRow(int r) const;
};

}  // namespace yunqi
