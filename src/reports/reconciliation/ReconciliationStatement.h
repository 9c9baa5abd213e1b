#pragma once

#include <QString>

#include "db/DatabaseSession.h"
#include "frame/MonthlyStatement.h"

namespace yunqi {

// The monthly invoice reconciliation: per month and tax rate what was
// invoiced beside what finance took in, each month closed by its 小计 row
// with the pre-invoiced sums and the difference, the run by its 合计 row.
// The grid is the only store: every later step reads the cell texts back.
class ReconciliationStatement : public MonthlyStatement {
  public:
    explicit ReconciliationStatement(DatabaseSession& session) : session_(session) {}
    std::unique_ptr<MonthlyStatement> Clone() const override {
        return std::make_unique<ReconciliationStatement>(*this);
    }

    void InitGridHeader(FlexGrid& statementGrid) const override;
    QString LoadInvoiceTypes() override;
    QString TitleCaption(const QString& entry, const QString& year) const override;
    Trapped ExtractFeeItems(const StatementConditions& conditions,
                            FlexGrid& statementGrid) override;
    Trapped RunReconciliation(const StatementConditions& conditions,
                              FlexGrid& statementGrid) override;
    void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                    const WorkbookContext& context) const override;
    const FeeItemList& FeeItems() const override { return feeItems_; }

    // Lays the header of FeeItems: n + 13 columns.
    void BuildGridHeader(FlexGrid& statementGrid) const;
    // The three steps of a run, each over every month, then the check.
    void FillMonthlyRows(const StatementConditions& conditions, FlexGrid& statementGrid);
    Trapped FillCollectedPreInvoiced(const StatementConditions& conditions,
                                     FlexGrid& statementGrid);
    Trapped FillUncollectedPreInvoiced(const StatementConditions& conditions,
                                       FlexGrid& statementGrid);

    // Tests set the lists of a ledger they built.
    void SetTypeCodes(QString special, QString ordinary, QString receipt);

    // The SQL texts, exactly as they are sent. monthKey is yyyymm.
    static QString FeeItemSql(const StatementConditions& conditions);
    QString MonthSql(const StatementConditions& conditions, const QString& monthKey) const;
    static QString CollectedSql(const StatementConditions& conditions, const QString& feeCodeList,
                                const QString& monthKey);
    static QString UncollectedSql(const StatementConditions& conditions, const QString& feeCodeList,
                                  const QString& monthKey);
    // The ItemCode of every item, comma-joined.
    QString FeeCodeList() const;

    // Colours of the closing rows, blue-green-red.
    static constexpr int kSubtotalColor = 0xC0E0FF;  // light orange
    static constexpr int kTotalColor = 0xFFC0C0;     // light blue

  private:
    Trapped FillPreInvoiced(const StatementConditions& conditions, FlexGrid& statementGrid,
                            bool collected);

    DatabaseSession& session_;
    FeeItemList feeItems_{FeeItem{}};
    QString special_, ordinary_, receipt_;
};

}  // namespace yunqi
