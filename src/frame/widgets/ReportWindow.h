#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QWidget>
#include <atomic>
#include <functional>
#include <memory>

#include "frame/ExportSteps.h"
#include "frame/FlexGrid.h"
#include "frame/ReportDefinition.h"
#include "frame/StatementConditions.h"
#include "frame/widgets/FlexGridView.h"
#include "frame/widgets/InputBlock.h"
#include "frame/widgets/WindowLayout.h"
#include "frame/xlsx/ExportFrame.h"

namespace yunqi {

class DatabaseSession;

// What every report window has: the title band with its two labels, the
// condition pane with the department list, the result area with MSFlexGrid1
// and the busy panel, the button strip with the export, the status bar with
// its clock, the resize rules, and the close by Command1.
//
// The frame's own controls come from the base's table (kFrameLayout in the
// .cpp); a variant passes the table of its own controls, which must hold
// List1 (the department list) and may place anything in Picture2 (the
// condition pane) and Picture3 (the result area). Controls carry the names
// of the design, so the layout and the tests address them by name.
//
// A variant (PagedReportWindow; the reconciliation window) runs the rest of
// its load in its constructor: its header into MutableGrid1(),
// LoadDepartments(), its invoice types into MutableChosenConditions(). It wires
// its buttons with OnClick(), overrides MakeExportRequest(), and where its
// pane differs LayoutConditionPane() (the reconciliation keeps Picture6 at
// the bottom of the pane with List1 above it) and LayoutResultArea() (the
// pager strip and PageSize of the paged windows).
//
// Event handlers run through Handle(), which takes a run-time error that
// escapes them to the program's run-time error handler.
class ReportWindow : public QWidget, private ExportFrame::ExportControls {
    Q_OBJECT
  public:
    ~ReportWindow() override;

    // The design client area, 18120 by 10950 twips.
    QSize sizeHint() const override;

    // A control by design name; a name no table holds ends the program.
    template <typename T = QWidget>
    T* Control(const QString& name) const {
        return controls_.Get<T>(name);
    }
    const FlexGrid& Grid1() const { return grid1_; }
    // The conditions chosen so far: department, dates or months, invoice types.
    const StatementConditions& ChosenConditions() const { return conditions_; }
    QString TitleText() const { return title_->text(); }
    // The selected List1 entry, or an empty text.
    QString SelectedEntry() const;
    QString LastExport() const { return lastExport_; }
    // Waits for the packing of stopped exports to end (their files are thrown
    // away): the program calls it before it ends.
    static void WaitForStoppedExports();

  protected:
    // Builds the frame's controls, then the variant's (in that order, so a
    // variant's control may lie in a pane of the frame), and sets the status
    // panels. A variant's constructor then runs the rest of its load.
    ReportWindow(const ReportDefinition& report, DatabaseSession& session,
                 WindowLayout variantLayout, QWidget* parent = nullptr);

    const ReportDefinition& Report() const { return report_; }
    const ReportTexts& Texts() const { return report_.texts; }
    DatabaseSession& Session() const { return session_; }
    StatementConditions& MutableChosenConditions() { return conditions_; }
    FlexGrid& MutableGrid1() { return grid1_; }
    FlexGridView* Grid1View() const { return view1_; }
    QListWidget* List1() const { return list1_; }
    QLabel* Title() const { return title_; }

    // Runs an event handler; a run-time error it raises goes to the
    // program's run-time error handler.
    static void Handle(const std::function<void()>& handler);
    // A click on a button runs the handler through Handle().
    void OnClick(QAbstractButton* button, std::function<void()> handler);

    // LoadDepartments: the entries at the end of List1, then no selection.
    void LoadDepartments();
    // The List1 click, run at every change of the selected entry (mouse or
    // keyboard): Label1(0) becomes "【department】" and the report's title.
    // The reconciliation window puts its year in front.
    virtual void ClickList1();
    // Sets Label1(0) and keeps it centred over the result area.
    void SetTitle(const QString& text);
    // DeptCode and SiteCode from the selected entry.
    void TakeDepartment();

    // The busy display: the hourglass, and Picture5 with Label3's text,
    // shown with one yield so that it paints. While the hourglass stands the
    // operator's input to the window is swallowed, also what waits in the
    // queue when it goes (InputBlock).
    void SetHourglass();
    void RestorePointer();
    void ShowBusyPanel(const QString& text);
    void HideBusyPanel();

    // Runs work on a thread of its own, its queries on a connection of that
    // thread's, while this thread goes on painting and ticking (the input
    // stays blocked while the hourglass stands). Esc, a close of the window
    // and the busy panel's 取消 stop it: its query is stopped at the driver
    // and false returned, and the caller puts the window back as it was.
    // Otherwise keep runs here, then an error that work raised is raised
    // here, and true is returned. Work that touches widgets asks this thread
    // (OnWindowThread); dialogs ask by themselves.
    // A run of queries is stopped by any stop before its end (a query that
    // a stop broke may look like one that found less). A file's writing opens
    // no connection, and is stopped only where the stop reached it: a file
    // made complete is there, and is told so.
    enum class Work { Queries, File };
    bool RunAside(const std::function<void()>& work, const std::function<void()>& keep = {},
                  Work kind = Work::Queries);
    // After a stopped run: the conditions and, when given, the grid as they
    // were before it, the busy panel and the pointer gone.
    void EndStoppedRun(const StatementConditions& before, const FlexGrid* shownGrid = nullptr);
    // Runs call on the window's thread: now from there, later from elsewhere.
    void OnWindowThread(std::function<void()> call);

    // Command1: unloads the window, its MDI frame with it.
    void Unload();

    // Command2: the export frame around the report's workbook.
    void ClickCommand2();
    virtual ExportFrame::ExportRequest MakeExportRequest() = 0;
    // Label2 while the export writes (the paged windows); the
    // reconciliation's Label2 is a note and stays.
    virtual void SetExportLabelVisible(bool) {}

    // The resize rules. The frame's run at every size change; then the
    // condition pane's (default: List1 down to the status bar) and the
    // result area's (default: nothing; the pager and PageSize).
    void Relayout();
    virtual void LayoutConditionPane();
    virtual void LayoutResultArea() {}
    int ScaleWidth() const { return Twips(width()); }
    int ScaleHeight() const { return Twips(height()); }

    void resizeEvent(QResizeEvent* event) override;

  private:
    void SetButtonsVisible(bool visible) override;
    void ShowProgressBar(int maximum) override;
    void SetProgressValue(int value) override;
    void HideProgressBar() override;
    void SetBusyLabelVisible(bool visible) override;
    void SetBusy(bool busy) override;
    bool WriteAside(const std::function<void()>& write) override;
    void FinishFile(const std::function<void()>& finish) override;
    void CreepOn();
    void SetStatusPanels();

    const ReportDefinition& report_;
    DatabaseSession& session_;
    ControlSet controls_;
    FlexGrid grid1_;
    StatementConditions conditions_;
    QString lastExport_;
    int pointerDepth_ = 0;
    int progressMaximum_ = 1;
    QElapsedTimer exportClock_;
    std::atomic<int> barShown_ = -1;
    QTimer* creep_;
    QElapsedTimer creepClock_;
    double creepPace_ = 500;
    std::unique_ptr<InputBlock> block_;
    std::function<void()> stopRun_;

    QWidget *picture1_, *picture2_, *picture3_, *picture4_, *picture5_;
    QLabel *title_, *label3_;
    QListWidget* list1_;
    FlexGridView* view1_;
    QPushButton *command1_, *command2_, *stopButton_;
    QProgressBar* progress_;
    QStatusBar* status_;
};

// The window of a report, as its definition asks for. The desktop program's
// menu creates every report window through it.
QWidget* NewReportWindow(const ReportDefinition& report, DatabaseSession& session);

}  // namespace yunqi
