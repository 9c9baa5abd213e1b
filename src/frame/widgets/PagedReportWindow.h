#pragma once

#include <QDateEdit>
#include <QLineEdit>
#include <QToolButton>
#include <memory>

#include "frame/PagedStatement.h"
#include "frame/widgets/ReportWindow.h"

namespace yunqi {

// The report window with a pager: the frame plus the date pickers, Command3
// (fee items) and Command6 (the run), the split-ratio grid MSFlexGrid2 with
// its editor txtGRD, and the pager strip Picture8 over MSFlexGrid1. The
// invoice, pre-invoice and parking windows are this window with their
// definitions' texts and statements.
class PagedReportWindow : public ReportWindow {
    Q_OBJECT
  public:
    PagedReportWindow(const ReportDefinition& report, DatabaseSession& session,
                      QWidget* parent = nullptr);
    ~PagedReportWindow() override;

    const FlexGrid& Grid2() const { return grid2_; }
    const PagedStatement& Statement() const { return *statement_; }
    int PageSize() const { return pageSize_; }
    int CurrentPage() const { return currentPage_; }

  protected:
    // Steps 1 and 2 of Command6: disable Command6 and lay the header, in
    // the order the report asks for (the parking report lays it first).
    virtual void LayHeaderAndDisableCommand6();

    ExportFrame::ExportRequest MakeExportRequest() override;
    void SetExportLabelVisible(bool visible) override;
    void LayoutResultArea() override;

  private:
    void Load();
    void ClickCommand3();
    void ClickCommand6();
    void ClickImage2(int index);
    void EnterText6();
    void ClickGrid2(int row, int col);
    void EnterTxtGrd();
    void BuildGridHeader();
    void ShowPage();
    void FitPageLabel();

    std::unique_ptr<PagedStatement> statement_;
    FlexGrid grid2_;
    int pageSize_ = 1;
    int currentPage_ = 1;
    bool ran_ = false;  // RunStatistics has made the row array

    QWidget* picture8_;
    QLabel *label19_, *label2_;
    QDateEdit *from_, *to_;
    QPushButton *command3_, *command6_;
    FlexGridView* view2_;
    QLineEdit *text6_, *txtGrd_;
};

}  // namespace yunqi
