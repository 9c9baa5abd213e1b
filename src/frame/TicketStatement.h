#pragma once

#include <QString>
#include <vector>

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
    // The select of the tickets of a department with the fee columns and each
    // item's lines (sub, joined as JoinDerivedTables joins them) beside them,
    // up to the department's filter; moreColumns follows 地址.
    QString TicketsSelect(const QString& moreColumns, const FlexGrid& ratios,
                          const std::vector<QString>& sub, bool byNote,
                          const QString& deptCode) const;
    // The number column of a ticket type: 专用发票, 普通发票, and 电子发票 where
    // the statement has that column; any other type is a 收据.
    static DetailRows::Kind KindOf(const QString& typeName, bool electronicColumn);

    DatabaseSession& session_;
    const DetailHeaderPlan& plan_;
    FeeItemList feeItems_{FeeItem{}};
    int feeColumnCount_ = 0;
    DetailRows rows_;
    int pageCount_ = 0;
};

}  // namespace yunqi
