#pragma once

#include <QString>

#include "frame/TicketStatement.h"

namespace yunqi {

// The VAT invoice detail statement: every ticket of a department that touched
// a date window, one money group per fee item, status words and a breakdown by
// payment method. Its rows: tickets, then "合  计", then the "其中" rows.
class InvoiceStatement : public TicketStatement {
  public:
    explicit InvoiceStatement(DatabaseSession& session);
    std::unique_ptr<PagedStatement> Clone() const override {
        return std::make_unique<InvoiceStatement>(*this);
    }

    Trapped ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                            FlexGrid& statementGrid) override;
    RunOutcome RunStatistics(const StatementConditions& conditions, const FlexGrid& ratios,
                             int pageSize) override;
    void WriteRow(GridRow& row, int r, const TextMeasure& measure) const override;
    // In InvoiceWorkbook.cpp: the workbook apart from the computation.
    void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                    const WorkbookContext& context) const override;

    // The SQL texts, exactly as they are sent.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString StatisticsSql(const StatementConditions& conditions, const FlexGrid& ratios) const;
};

}  // namespace yunqi
