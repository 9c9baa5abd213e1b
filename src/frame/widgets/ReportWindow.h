#pragma once

#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>
#include <QWidget>
#include <functional>
#include <memory>

#include "frame/ExportSteps.h"
#include "frame/FlexGrid.h"
#include "frame/PagedStatement.h"
#include "frame/ReportDefinition.h"
#include "frame/SheetModel.h"
#include "frame/StatementConditions.h"
#include "frame/widgets/FlexGridView.h"

namespace yunqi {

class DatabaseSession;

// The report window with a pager, shared by the statements that differ only
// by their texts, their statement and their workbook. Controls carry the
// names of the design, so tests and the layout address them by name.
class ReportWindow : public QWidget, private ExportFrame::ExportControls {
    Q_OBJECT
  public:
    ReportWindow(const ReportDefinition& report, DatabaseSession& session,
                 QWidget* parent = nullptr);
    ~ReportWindow() override;

    // The handlers, callable by tests as the events call them.
    void ClickList1(int row);
    void ClickCommand3();
    void ClickCommand6();
    void ClickCommand2();
    void ClickImage2(int index);
    void EnterText6();
    void ClickGrid2(int row, int col);
    void EnterTxtGrd();

    const FlexGrid& Grid1() const { return grid1_; }
    const FlexGrid& Grid2() const { return grid2_; }
    const PagedStatement& Statement() const { return *statement_; }
    const StatementConditions& Conditions() const { return conditions_; }
    QString TitleText() const { return title_->text(); }
    QString SelectedEntry() const;
    QDate FromDate() const { return from_->date(); }
    QDate ToDate() const { return to_->date(); }
    int PageSize() const { return pageSize_; }
    int CurrentPage() const { return currentPage_; }
    QString LastExport() const { return lastExport_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void SetButtonsVisible(bool visible) override;
    void ShowProgressBar(int maximum) override;
    void SetProgressValue(int value) override;
    void HideProgressBar() override;
    void SetBusyLabelVisible(bool visible) override;

    void ShowBusy(const QString& text);
    void HideBusy();
    void ShowCurrentPage();
    void Layout();

    const ReportDefinition& report_;
    const ReportTexts& texts_;
    std::unique_ptr<PagedStatement> statement_;
    DatabaseSession& session_;
    FlexGrid grid1_;
    FlexGrid grid2_;
    StatementConditions conditions_;
    int pageSize_ = 1;
    int currentPage_ = 1;
    QString lastExport_;

    QWidget *picture1_, *picture2_, *picture3_, *picture4_, *picture5_, *picture6_, *picture8_;
    QLabel *title_, *conditionsTitle_, *label19_, *label2_, *label3_;
    QListWidget* list1_;
    QDateEdit *from_, *to_;
    QPushButton *command1_, *command2_, *command3_, *command6_;
    FlexGridView *view1_, *view2_;
    QLineEdit *text6_, *txtGrd_;
    QToolButton* image2_[4];
    QProgressBar* progress_;
    QStatusBar* status_;
};

// The window of a report, as its definition asks for.
QWidget* NewReportWindow(const ReportDefinition& report, DatabaseSession& session);

}  // namespace yunqi
