#pragma once

#include <QString>

#include "db/DatabaseSession.h"
#include "frame/DetailHeader.h"
#include "frame/DetailRows.h"
#include "frame/PagedStatement.h"

namespace yunqi {

// What the statements of ticket rows have in common: the fee items and the
// header laid by a plan, the compact rows, the page count.
class TicketStatement : public PagedStatement {
  public:
    TicketStatement(DatabaseSession& session, const DetailHeaderPlan& plan)
        : session_(session), plan_(plan) {}

    void InitGridHeader(FlexGrid& statementGrid) const override {
        DetailHeader::Init(statementGrid, plan_);
    }
    void BuildGridHeader(FlexGrid& statementGrid, const FlexGrid& ratios) override {
        feeColumnCount_ = DetailHeader::Build(statementGrid, plan_, feeItems_, ratios);
    }

    const FeeItemList& FeeItems() const override { return feeItems_; }
    int FeeColumnCount() const override { return feeColumnCount_; }
    int PageCount() const override { return pageCount_; }
    int UpperBound() const override { return rows_.UpperBound(); }
    const DetailRows& Rows() const { return rows_; }
    const DetailHeaderPlan& HeaderPlan() const { return plan_; }

  protected:
    // Runs the extraction statement, fills the split ratios with their
    // defaults and, when an item was found, lays the header. A failure leaves
    // the items read before it (or, if the statement did not open, those of
    // the last extraction).
    void LoadItems(const QString& sql, FlexGrid& ratios, FlexGrid& statementGrid);

    DatabaseSession& session_;
    const DetailHeaderPlan& plan_;
    FeeItemList feeItems_{FeeItem{}};
    int feeColumnCount_ = 0;
    DetailRows rows_;
    int pageCount_ = 0;
};

}  // namespace yunqi
