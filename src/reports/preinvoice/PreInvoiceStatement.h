#pragma once

#include <QString>

#include "db/DatabaseSession.h"
#include "frame/DetailRows.h"
#include "frame/PagedStatement.h"

namespace yunqi {

// The VAT pre-invoice statement: the tickets of a department issued in a date
// window and not paid by its last day, one summed money group per fee item.
// The same window and steps as the invoice statement; its own SQL, rows,
// columns and workbook.
class PreInvoiceStatement : public PagedStatement {
  public:
    explicit PreInvoiceStatement(DatabaseSession& session) : session_(session) {}

    void InitGridHeader(FlexGrid& grid1) const override;
    void ExtractFeeItems(const StatementConditions& conditions, FlexGrid& grid2,
                         FlexGrid& grid1) override;
    void BuildGridHeader(FlexGrid& grid1, const FlexGrid& grid2) override;
    bool RunStatistics(const StatementConditions& conditions, const FlexGrid& grid2,
                       int pageSize) override;
    void ShowPage(FlexGrid& grid1, int page, int pageSize,
                  const TextMeasure& measure) const override;
    void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                    const WorkbookContext& context) const override;

    const FeeItemList& FeeItems() const override { return feeItems_; }
    int FeeColumnCount() const override { return feeColumnCount_; }
    int PageCount() const override { return pageCount_; }
    int UpperBound() const override { return rows_.UpperBound(); }
    // PreInvoiceRows: ticket rows, then "合  计".
    const DetailRows& Rows() const { return rows_; }

    // The SQL texts, exactly as they are sent.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString StatisticsSql(const StatementConditions& conditions, const FlexGrid& grid2) const;

  private:
    bool Compute(const StatementConditions& conditions, const FlexGrid& grid2, int pageSize);

    DatabaseSession& session_;
    FeeItemList feeItems_{FeeItem{}};
    int feeColumnCount_ = 0;
    DetailRows rows_;
    int pageCount_ = 0;
};

}  // namespace yunqi
