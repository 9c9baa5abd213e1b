#pragma once

#include <QString>

#include "frame/DetailRows.h"
#include "frame/PagedStatement.h"
#include "db/DatabaseSession.h"

namespace yunqi {

// The VAT invoice detail statement: every ticket of a department that touched
// a date window, one money group per fee item, status words and a breakdown by
// payment method. Computed without widgets; the window and the companion share it.
class InvoiceStatement : public PagedStatement {
  public:
    explicit InvoiceStatement(DatabaseSession& session) : session_(session) {}

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
    // InvoiceRows: ticket rows, then "合  计", then the "其中" rows.
    const DetailRows& Rows() const { return rows_; }

    // The SQL texts, exactly as they are sent.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString StatisticsSql(const StatementConditions& conditions, const FlexGrid& grid2) const;

  private:
    DatabaseSession& session_;
    FeeItemList feeItems_{FeeItem{}};
    int feeColumnCount_ = 0;
    DetailRows rows_;
    int pageCount_ = 0;
};

}  // namespace yunqi
