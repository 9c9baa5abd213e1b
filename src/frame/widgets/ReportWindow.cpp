#include "frame/widgets/ReportWindow.h"

#include <QApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QMouseEvent>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/DatabaseSession.h"
#include "db/SessionState.h"
#include "frame/Conditions.h"
#include "frame/widgets/ChildWindow.h"

namespace yunqi {

namespace {

// A department stays selected until another is clicked: a press on the empty
// part of the list below the last entry is let go.
class KeepSelection : public QObject {
  public:
    explicit KeepSelection(QListWidget* list) : QObject(list), list_(list) {}
    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonDblClick:
            case QEvent::MouseMove:
            case QEvent::MouseButtonRelease: {
                const auto* mouse = static_cast<QMouseEvent*>(event);
                return !list_->indexAt(mouse->position().toPoint()).isValid();
            }
            default:
                return false;
        }
    }

  private:
    QListWidget* list_;
};

}  // namespace

namespace {

constexpr int kDesignWidth = 18120, kDesignHeight = 10950;
constexpr int kLightBlue = 0xFFC0C0;  // red 192, green 192, blue 255
// The export's bar: the rows fill the first part, the finishing of the file
// (most of the time on a long statement) the rest.
constexpr int kBarSteps = 1000, kRowsShare = 400;

using K = ControlKind;

// The frame every report window has: kind, name, container, box in twips,
// text, font, hidden at load, back colour.
// clang-format off
const ControlSpec kFrameLayout[] = {
    {K::Picture,     "Picture1",     nullptr,    {0, 0, 18120, 465}},
    {K::Label,       "Label1(1)",    "Picture1", {195, 90, 1890, 285}, ByReport(&ReportTexts::conditionsTitle), ControlFont::Heading},
    {K::Label,       "Label1(0)",    "Picture1", {7905, 105, 1920, 330}, ByReport(&ReportTexts::title), ControlFont::Title},
    {K::Picture,     "Picture2",     nullptr,    {0, 465, 4440, 10170}},
    {K::Picture,     "Picture3",     nullptr,    {4440, 480, 12660, 9135}},
    {K::Grid,        "MSFlexGrid1",  "Picture3", {30, 420, 11865, 7095}},
    {K::Picture,     "Picture5",     "Picture3", {3675, 3300, 5340, 495}, {}, ControlFont::Normal, kHidden, kLightBlue},
    {K::Label,       "Label3",       "Picture5", {240, 75, 3930, 285}},
    {K::Button,      "CommandStop",  "Picture5", {4230, 75, 1020, 345}, Said("取消")},
    {K::Picture,     "Picture4",     nullptr,    {4575, 9915, 14700, 585}},
    {K::ProgressBar, "ProgressBar1", "Picture4", {4005, 195, 6255, 285}, {}, ControlFont::Normal, kHidden},
    {K::Button,      "Command2",     "Picture4", {2250, 180, 1305, 345}, Said("导出Excel")},
    {K::Button,      "Command1",     "Picture4", {12360, 165, 1305, 345}, Said("退出")},
    {K::StatusBar,   "StatusBar1",   nullptr,    {0, 10635, 18120, 315}},
};
// clang-format on

QString Today() { return QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")); }
QString Now() { return QTime::currentTime().toString(QStringLiteral("HH:mm:ss")); }

}  // namespace

ReportWindow::ReportWindow(const ReportDefinition& report, DatabaseSession& session,
                           WindowLayout variantLayout, QWidget* parent)
    : QWidget(parent), report_(report), session_(session) {
    setObjectName(report.windowName);
    setWindowTitle(report.texts.caption);
    setAttribute(Qt::WA_DeleteOnClose);
    setFont(DesignFont(ControlFont::Normal));
    resize(sizeHint());

    controls_.Build(this, kFrameLayout, report.texts);
    controls_.Build(this, variantLayout, report.texts);
    picture1_ = Control("Picture1");
    picture2_ = Control("Picture2");
    picture3_ = Control("Picture3");
    picture4_ = Control("Picture4");
    picture5_ = Control("Picture5");
    title_ = Control<QLabel>("Label1(0)");
    title_->adjustSize();
    // A longer heading than the design's is shown whole, never cut.
    auto* heading = Control<QLabel>("Label1(1)");
    heading->resize(std::max(heading->width(), heading->sizeHint().width()), heading->height());
    label3_ = Control<QLabel>("Label3");
    list1_ = Control<QListWidget>("List1");
    list1_->viewport()->installEventFilter(new KeepSelection(list1_));
    view1_ = Control<FlexGridView>("MSFlexGrid1");
    view1_->SetGrid(grid1_);
    command1_ = Control<QPushButton>("Command1");
    command2_ = Control<QPushButton>("Command2");
    stopButton_ = Control<QPushButton>("CommandStop");
    progress_ = Control<QProgressBar>("ProgressBar1");
    status_ = Control<QStatusBar>("StatusBar1");
    SetStatusPanels();

    connect(stopButton_, &QPushButton::clicked, this, [this] {
        if (stopRun_) stopRun_();
    });
    creep_ = new QTimer(this);
    creep_->setInterval(100);
    connect(creep_, &QTimer::timeout, this, [this] { CreepOn(); });
    OnClick(command1_, [this] { Unload(); });
    OnClick(command2_, [this] { ClickCommand2(); });
    // Every change of the selected entry, by mouse or by keyboard.
    connect(list1_, &QListWidget::itemSelectionChanged, this, [this] {
        if (!SelectedEntry().isEmpty()) Handle([this] { ClickList1(); });
    });
}

ReportWindow::~ReportWindow() {
    block_.reset();
    while (pointerDepth_ > 0) RestorePointer();
}

QSize ReportWindow::sizeHint() const { return QSize(Pixels(kDesignWidth), Pixels(kDesignHeight)); }

void ReportWindow::SetStatusPanels() {
    const SessionState& s = AppSession();
    const QString panels[] = {QStringLiteral("操作员"),
                              s.SessionOperatorText,
                              QStringLiteral("部门"),
                              s.SessionDepartmentText,
                              QStringLiteral("岗位"),
                              s.SessionPostText,
                              QStringLiteral("云栖账房"),
                              Today(),
                              Now()};
    QLabel* clock[2] = {};
    for (int i = 0; i < 9; ++i) {
        auto* panel = new QLabel(panels[i], status_);
        panel->setObjectName(QStringLiteral("Panel%1").arg(i + 1));
        status_->addWidget(panel, i == 6 ? 1 : 0);
        if (i >= 7) clock[i - 7] = panel;
    }
    // Panels 8 and 9 keep showing the date and the time.
    auto* tick = new QTimer(this);
    connect(tick, &QTimer::timeout, this, [date = clock[0], time = clock[1]] {
        date->setText(Today());
        time->setText(Now());
    });
    tick->start(1000);
}

void ReportWindow::Handle(const std::function<void()>& handler) {
    try {
        handler();
    } catch (const RuntimeError& e) {
        ReportRuntimeError(e);
    }
}

void ReportWindow::OnClick(QAbstractButton* button, std::function<void()> handler) {
    connect(button, &QAbstractButton::clicked, this,
            [handler = std::move(handler)] { Handle(handler); });
}

void ReportWindow::LoadDepartments() {
    list1_->addItems(Conditions::LoadDepartments(session_));
    // No selection, and no current entry either (also when the list gets
    // the focus): the first arrow key then selects the first entry.
    list1_->setCurrentIndex(QModelIndex());
}

QString ReportWindow::SelectedEntry() const {
    const auto selected = list1_->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

void ReportWindow::ClickList1() {
    SetTitle(Conditions::TitleCaption(SelectedEntry(), Texts().title));
}

void ReportWindow::SetTitle(const QString& text) {
    title_->setText(text);
    title_->adjustSize();
    Relayout();
}

void ReportWindow::TakeDepartment() {
    const QString entry = SelectedEntry();
    conditions_.DeptCode = Conditions::DeptCodeOf(entry);
    conditions_.SiteCode = Conditions::SiteCodeOf(entry);
}

void ReportWindow::SetHourglass() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    if (pointerDepth_++ == 0) block_ = std::make_unique<InputBlock>(this);
}

void ReportWindow::RestorePointer() {
    if (pointerDepth_ == 0) return;
    if (pointerDepth_ == 1 && block_) {
        block_->Drain();
        // A close asked for during a run that it stopped is carried out now.
        if (QPointer<QWidget> closing = block_->CloseWanted())
            QTimer::singleShot(0, closing, [closing] { closing->close(); });
        block_.reset();
    }
    QApplication::restoreOverrideCursor();
    --pointerDepth_;
}

bool ReportWindow::RunAside(const std::function<void()>& work, const std::function<void()>& keep,
                            Work kind) {
    StopRequest stop;
    QEventLoop loop;
    // A query that started after the first interrupt is interrupted by the next.
    QTimer again;
    again.setInterval(100);
    connect(&again, &QTimer::timeout, this, [this] { session_.Interrupt(); });
    stopRun_ = [&] {
        if (stop.Requested()) return;
        stop.Request();
        session_.Interrupt();
        again.start();
    };
    if (block_) block_->AllowStop(stopRun_, stopButton_);
    std::exception_ptr failure;
    bool stoppedThere = false;
    std::thread worker([&] {
        StopScope scope(stop);
        try {
            std::optional<DatabaseSession::ThreadConnection> connection;
            if (kind == Work::Queries) connection.emplace(session_);
            work();
        } catch (const Stopped&) {
            stoppedThere = true;
        } catch (...) {
            failure = std::current_exception();
        }
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    again.stop();
    stopRun_ = nullptr;
    if (block_) block_->AllowStop(nullptr, nullptr);
    if (kind == Work::Queries ? stop.Requested() : stoppedThere) return false;
    if (keep) keep();
    if (failure) std::rethrow_exception(failure);
    return true;
}

void ReportWindow::EndStoppedRun(const StatementConditions& before, const FlexGrid* shownGrid) {
    if (shownGrid) {
        grid1_ = *shownGrid;
        view1_->Refresh();
    }
    conditions_ = before;
    HideBusyPanel();
    RestorePointer();
}

void ReportWindow::OnWindowThread(std::function<void()> call) {
    if (QThread::currentThread() == thread())
        call();
    else
        QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
}

void ReportWindow::ShowBusyPanel(const QString& text) {
    label3_->setText(text);
    picture5_->show();
    picture5_->raise();
    AppDialogs().Yield();
}

void ReportWindow::HideBusyPanel() { picture5_->hide(); }

void ReportWindow::Unload() { CloseChildWindow(this); }

void ReportWindow::ClickCommand2() {
    lastExport_ = ExportFrame::ExportCommand(MakeExportRequest(), *this, AppDialogs());
}

bool ReportWindow::WriteAside(const std::function<void()>& write) {
    barShown_ = -1;
    return RunAside(write, {}, Work::File);
}

void ReportWindow::SetButtonsVisible(bool visible) {
    command1_->setVisible(visible);
    command2_->setVisible(visible);
}
void ReportWindow::ShowProgressBar(int maximum) {
    progress_->setRange(0, kBarSteps);
    progressMaximum_ = std::max(maximum, 1);
    progress_->setValue(0);
    progress_->show();
    exportClock_.start();
}
void ReportWindow::SetProgressValue(int value) {
    // Rows come by the hundred thousand from the writing thread: the bar is
    // told only when it moves.
    const int shown = int(qint64(value) * kRowsShare / progressMaximum_);
    if (shown == barShown_.exchange(shown)) return;
    OnWindowThread([this, shown] { progress_->setValue(shown); });
}

namespace {

// Packings left to finish after their export was stopped: the program waits
// for them before it ends, so that each takes its temporary file along.
struct LeftPackings {
    std::mutex mutex;
    std::condition_variable done;
    int count = 0;
};
LeftPackings& Left() {
    static LeftPackings left;
    return left;
}

// The library packs the workbook in one call that nothing stops: it runs on
// a thread of its own, and a stop leaves it to finish there, to no file.
void PackAside(const std::function<void()>& finish) {
    struct Packing {
        std::mutex mutex;
        std::condition_variable over;
        bool done = false;
        std::exception_ptr failure;
        StopRequest stop;
    };
    const auto packing = std::make_shared<Packing>();
    {
        std::lock_guard lock(Left().mutex);
        ++Left().count;
    }
    std::thread([packing, finish] {
        {
            StopScope scope(packing->stop);
            try {
                finish();
            } catch (...) {
                packing->failure = std::current_exception();
            }
        }
        {
            std::lock_guard lock(packing->mutex);
            packing->done = true;
        }
        packing->over.notify_all();
        std::lock_guard lock(Left().mutex);
        if (--Left().count == 0) Left().done.notify_all();
    }).detach();
    std::unique_lock lock(packing->mutex);
    while (
        !packing->over.wait_for(lock, std::chrono::milliseconds(50), [&] { return packing->done; }))
        if (StopRequestedHere()) {
            packing->stop.Request();
            throw Stopped{};
        }
    if (packing->failure) std::rethrow_exception(packing->failure);
}

}  // namespace

void ReportWindow::WaitForStoppedExports() {
    std::unique_lock lock(Left().mutex);
    Left().done.wait(lock, [] { return Left().count == 0; });
}

void ReportWindow::FinishFile(const std::function<void()>& finish) {
    // Meanwhile the bar moves on towards, never to, the end, at the pace the
    // rows set.
    OnWindowThread([this] {
        creepPace_ = std::max<double>(exportClock_.elapsed(), 500);
        creepClock_.start();
        creep_->start();
    });
    struct StopCreep {
        ReportWindow* w;
        ~StopCreep() {
            w->OnWindowThread([w = w] { w->creep_->stop(); });
        }
    } stopCreep{this};
    PackAside(finish);
    OnWindowThread([this] { progress_->setValue(kBarSteps); });
}

void ReportWindow::CreepOn() {
    const double share = 1 - std::exp(-double(creepClock_.elapsed()) / creepPace_);
    progress_->setValue(kRowsShare + int((kBarSteps - 1 - kRowsShare) * share));
}
void ReportWindow::HideProgressBar() { progress_->hide(); }
void ReportWindow::SetBusyLabelVisible(bool visible) {
    OnWindowThread([this, visible] { SetExportLabelVisible(visible); });
}

void ReportWindow::SetBusy(bool busy) {
    if (busy)
        SetHourglass();
    else
        RestorePointer();
}

void ReportWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Relayout();
}

void ReportWindow::Relayout() {
    const int scaleWidth = ScaleWidth(), scaleHeight = ScaleHeight();
    QRect p1 = TwipsBox(picture1_), p2 = TwipsBox(picture2_), p3 = TwipsBox(picture3_),
          p4 = TwipsBox(picture4_), p5 = TwipsBox(picture5_), st = TwipsBox(status_),
          g1 = TwipsBox(view1_), c1 = TwipsBox(command1_), c2 = TwipsBox(command2_),
          pb = TwipsBox(progress_), t0 = TwipsBox(title_);
    // The title band and the status bar are aligned to the top and the bottom.
    p1.setWidth(scaleWidth);
    st.moveTop(scaleHeight - st.height());
    st.setWidth(scaleWidth);
    p3.moveTop(p1.height());
    p3.moveLeft(p2.width());
    p3.setHeight(scaleHeight - p3.top() - p4.height() - st.height());
    p3.setWidth(scaleWidth - p2.width());
    // The title is centred over the result area, not over the band.
    t0.moveLeft(p3.left() + (p3.width() - t0.width()) / 2);
    p4.moveLeft(p3.left());
    p4.setWidth(p3.width());
    p4.moveTop(p1.height() + p3.height());
    // Command1 on the right with the margin Command2 has on the left.
    c1.moveLeft(p4.width() - c2.left() - c1.width());
    // The condition pane runs down to the status bar, so that what it holds
    // can follow the window.
    p2.setHeight(scaleHeight - p2.top() - st.height());
    pb.moveLeft(30);
    pb.setWidth(p4.width() - 60);
    g1.setWidth(p3.width() - g1.left() - 60);
    g1.setHeight(p3.height() - g1.top() - 60);
    p5.moveTop((g1.height() - p5.height()) / 2);
    p5.moveLeft((g1.width() - p5.width()) / 2);
    const std::pair<QWidget*, QRect> boxes[] = {
        {picture1_, p1}, {status_, st},   {picture3_, p3}, {title_, t0}, {picture4_, p4},
        {command1_, c1}, {picture2_, p2}, {progress_, pb}, {view1_, g1}, {picture5_, p5},
    };
    for (const auto& [w, box] : boxes) PlaceAt(w, box);
    LayoutConditionPane();
    LayoutResultArea();
}

void ReportWindow::LayoutConditionPane() {
    QRect l1 = TwipsBox(list1_);
    l1.setHeight(ScaleHeight() - TwipsBox(picture1_).height() - l1.top() -
                 TwipsBox(status_).height());
    PlaceAt(list1_, l1);
}

}  // namespace yunqi
