#pragma once

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QWidget>
#include <memory>

#include "frame/ExportSteps.h"
#include "frame/FlexGrid.h"
#include "frame/MonthlyStatement.h"
#include "frame/ReportDefinition.h"
#include "frame/StatementConditions.h"
#include "frame/widgets/FlexGridView.h"

namespace yunqi {

class DatabaseSession;

// The report window of a year and a range of months: no pager, no fee-item
// button, no split ratios. Command3 extracts the items and fills the grid in
// one go; the grid is what the export writes.
class MonthlyReportWindow : public QWidget, private ExportFrame::ExportControls {
  public:
    MonthlyReportWindow(const ReportDefinition& report, DatabaseSession& session,
                        QWidget* parent = nullptr);
    ~MonthlyReportWindow() override;

    // The handlers, callable by tests as the events call them.
    void ClickList1(int row);
    void ClickCommand3();
    void ClickCommand2();

    const FlexGrid& Grid1() const { return grid1_; }
    const MonthlyStatement& Statement() const { return *statement_; }
    const StatementConditions& Conditions() const { return conditions_; }
    QString TitleText() const { return title_->text(); }
    QString SelectedEntry() const;
    QString LastExport() const { return lastExport_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void SetButtonsVisible(bool visible) override;
    void ShowProgressBar(int maximum) override;
    void SetProgressValue(int value) override;
    void HideProgressBar() override;
    void SetBusyLabelVisible(bool) override {}

    void RunReconciliation();
    void ShowBusy(const QString& text);
    void HideBusy();
    void Layout();

    const ReportDefinition& report_;
    const ReportTexts& texts_;
    std::unique_ptr<MonthlyStatement> statement_;
    FlexGrid grid1_;
    StatementConditions conditions_;
    QString lastExport_;

    QWidget *picture1_, *picture2_, *picture3_, *picture4_, *picture5_, *picture6_;
    QLabel *title_, *label2_, *label3_;
    QListWidget* list1_;
    QComboBox *combo1_, *combo2_, *combo3_;
    QPushButton *command1_, *command2_, *command3_;
    FlexGridView* view1_;
    QProgressBar* progress_;
    QStatusBar* status_;
};

}  // namespace yunqi
