#pragma once

#include <QString>

#include "frame/TicketStatement.h"

namespace yunqi {

// The VAT pre-invoice statement: the tickets of a department issued in a date
// window and not paid by its last day, one summed money group per fee item.
// The same window and steps as the invoice statement; its own SQL, rows
// (tickets, then "合  计"), columns and workbook.
class PreInvoiceStatement : public TicketStatement {
  public:
    explicit PreInvoiceStatement(DatabaseSession& session);
    std::unique_ptr<PagedStatement> Clone() const override {
        return std::make_unique<PreInvoiceStatement>(*this);
    }

    Trapped ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                            FlexGrid& statementGrid) override;
    RunOutcome RunStatistics(const StatementConditions& conditions, const FlexGrid& ratios,
                             int pageSize) override;
    void WriteRow(GridRow& row, int r, const TextMeasure& measure) const override;
    // In PreInvoiceWorkbook.cpp: the workbook apart from the computation.
    void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                    const WorkbookContext& context) const override;

    // The SQL texts, exactly as they are sent.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString StatisticsSql(const StatementConditions& conditions, const FlexGrid& ratios) const;

  private:
    bool Compute(const StatementConditions& conditions, const FlexGrid& ratios, int pageSize);
};

}  // namespace yunqi
