#pragma once

#include <QComboBox>
#include <QPushButton>
#include <memory>

#include "frame/MonthlyStatement.h"
#include "frame/widgets/ReportWindow.h"

namespace yunqi {

// The report window of a year and a range of months: the frame plus the
// year and month combos, and Command3, which extracts the fee items and
// fills the grid in one go. No pager, no split ratios, no Command6; the grid
// is the statement and what the export writes. Label2 under the grid states
// the rule the check tests.
class MonthlyReportWindow : public ReportWindow {
    Q_OBJECT
  public:
    MonthlyReportWindow(const ReportDefinition& report, DatabaseSession& session,
                        QWidget* parent = nullptr);
    ~MonthlyReportWindow() override;

    const MonthlyStatement& Statement() const { return *statement_; }

  protected:
    void ClickList1() override;
    ExportFrame::ExportRequest MakeExportRequest() override;
    void LayoutConditionPane() override;
    void LayoutResultArea() override;

  private:
    void Load();
    // The narrowest window in which the check rule fits between the buttons.
    void KeepRoomForTheRule();
    void ClickCommand3();
    void RunReconciliation();

    std::unique_ptr<MonthlyStatement> statement_;
    QComboBox *combo1_, *combo2_, *combo3_;
    QPushButton* command3_;
    QWidget* picture6_;
    QLabel* label2_;
};

}  // namespace yunqi
