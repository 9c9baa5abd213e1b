#include "frame/widgets/MonthlyReportWindow.h"

#include <QApplication>
#include <QDate>
#include <QTimer>

#include "core/RuntimeError.h"
#include "db/SessionState.h"
#include "frame/Conditions.h"
#include "frame/xlsx/ExportFrame.h"

namespace yunqi {

namespace {

constexpr int kTwipsPerPixel = 15;
const QString kSystemTitle = QStringLiteral("系统提示");

void Place(QWidget* w, int left, int top, int width, int height) {
    w->setGeometry(left / kTwipsPerPixel, top / kTwipsPerPixel, width / kTwipsPerPixel,
                   height / kTwipsPerPixel);
}
int Twips(int pixels) { return pixels * kTwipsPerPixel; }

QFont Yahei(double points, bool bold) {
    QFont f;
    f.setFamilies({QStringLiteral("微软雅黑"), QStringLiteral("Noto Sans CJK SC")});
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

template <typename T>
T* Named(QWidget* parent, const QString& name) {
    T* w = new T(parent);
    w->setObjectName(name);
    return w;
}

QLabel* Label(QWidget* parent, const QString& name, const QString& text, int left, int top,
              int width, int height) {
    QLabel* l = Named<QLabel>(parent, name);
    l->setText(text);
    Place(l, left, top, width, height);
    return l;
}

}  // namespace

MonthlyReportWindow::MonthlyReportWindow(const ReportDefinition& report, DatabaseSession& session,
                                         QWidget* parent)
    : QWidget(parent),
      report_(report),
      texts_(report.texts),
      statement_(report.makeMonthly(session)) {
    setObjectName(report.windowName);
    setWindowTitle(texts_.caption);
    setAttribute(Qt::WA_DeleteOnClose);
    setFont(Yahei(9, false));
    resize(18120 / kTwipsPerPixel, 10950 / kTwipsPerPixel);

    picture1_ = Named<QWidget>(this, "Picture1");
    Place(picture1_, 0, 0, 18120, 465);
    Label(picture1_, "Label1(1)", texts_.conditionsTitle, 195, 90, 2400, 285)
        ->setFont(Yahei(10.5, true));
    title_ = Label(picture1_, "Label1(0)", texts_.title, 7905, 105, 1920, 330);
    title_->setFont(Yahei(12, true));
    title_->adjustSize();

    picture2_ = Named<QWidget>(this, "Picture2");
    Place(picture2_, 0, 465, 4440, 10170);
    Label(picture2_, "Label1(10)", texts_.dateRangeLabel, 345, 195, 1300, 255);
    combo1_ = Named<QComboBox>(picture2_, "Combo1");
    Place(combo1_, 285, 480, 900, 300);
    Label(picture2_, "Label1(12)", QStringLiteral("年"), 1215, 525, 240, 255);
    combo2_ = Named<QComboBox>(picture2_, "Combo2");
    Place(combo2_, 1470, 480, 660, 300);
    Label(picture2_, "Label1(13)", QStringLiteral("月至 "), 2160, 525, 480, 255);
    combo3_ = Named<QComboBox>(picture2_, "Combo3");
    Place(combo3_, 2640, 480, 660, 300);
    Label(picture2_, "Label1(14)", QStringLiteral("月"), 3330, 525, 240, 255);
    Label(picture2_, "Label1(11)", QStringLiteral("选择部门"), 165, 1035, 720, 255);
    list1_ = Named<QListWidget>(picture2_, "List1");
    Place(list1_, 90, 1320, 4305, 7000);
    picture6_ = Named<QWidget>(picture2_, "Picture6");
    Place(picture6_, 45, 8700, 4290, 600);
    command3_ = Named<QPushButton>(picture6_, "Command3");
    command3_->setText(QStringLiteral("开始统计"));
    Place(command3_, 1500, 120, 1290, 345);

    picture3_ = Named<QWidget>(this, "Picture3");
    Place(picture3_, 4440, 480, 12660, 9135);
    view1_ = new FlexGridView(grid1_, picture3_);
    view1_->setObjectName(QStringLiteral("MSFlexGrid1"));
    Place(view1_, 30, 60, 11865, 7095);
    picture5_ = Named<QWidget>(view1_, "Picture5");
    picture5_->setAutoFillBackground(true);
    picture5_->setStyleSheet(QStringLiteral("background-color: rgb(192,192,255);"));
    Place(picture5_, 3675, 3300, 5340, 495);
    label3_ = Label(picture5_, "Label3", QString(), 240, 75, 3930, 285);
    picture5_->hide();

    picture4_ = Named<QWidget>(this, "Picture4");
    Place(picture4_, 4575, 9915, 14700, 585);
    label2_ =
        Label(picture4_, "Label2",
              QStringLiteral("核对:(专用发票+普通发票+收据=财务交账-当月收预开票+当月未收预开票)"),
              3800, 225, 7800, 255);
    progress_ = Named<QProgressBar>(picture4_, "ProgressBar1");
    Place(progress_, 4005, 195, 6255, 285);
    progress_->hide();
    command2_ = Named<QPushButton>(picture4_, "Command2");
    command2_->setText(QStringLiteral("导出Excel"));
    Place(command2_, 2250, 180, 1305, 345);
    command1_ = Named<QPushButton>(picture4_, "Command1");
    command1_->setText(QStringLiteral("退出"));
    Place(command1_, 12360, 165, 1305, 345);

    status_ = Named<QStatusBar>(this, "StatusBar1");
    Place(status_, 0, 10635, 18120, 315);
    const SessionState& state = AppSession();
    const QString panels[] = {QStringLiteral("操作员"),
                              state.SessionOperatorText,
                              QStringLiteral("部门"),
                              state.SessionDepartmentText,
                              QStringLiteral("岗位"),
                              state.SessionPostText,
                              QStringLiteral("云栖账房"),
                              QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")),
                              QTime::currentTime().toString(QStringLiteral("HH:mm:ss"))};
    QLabel* clock[2] = {};
    for (int i = 0; i < 9; ++i) {
        auto* panel = Named<QLabel>(status_, QStringLiteral("Panel%1").arg(i + 1));
        panel->setText(panels[i]);
        status_->addWidget(panel, i == 6 ? 1 : 0);
        if (i >= 7) clock[i - 7] = panel;
    }
    auto* tick = new QTimer(this);
    connect(tick, &QTimer::timeout, this, [date = clock[0], time = clock[1]] {
        date->setText(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
        time->setText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
    });
    tick->start(1000);

    connect(command1_, &QPushButton::clicked, this, &QWidget::close);
    connect(command2_, &QPushButton::clicked, this, [this] { ClickCommand2(); });
    connect(command3_, &QPushButton::clicked, this, [this] { ClickCommand3(); });
    connect(list1_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* it) { ClickList1(list1_->row(it)); });

    // Load, in its order: the year, the months, then the grid and the lists.
    for (int year = 2016; year <= 2049; ++year) combo1_->addItem(QString::number(year));
    combo1_->setCurrentText(QString::number(QDate::currentDate().year()));
    for (int month = 1; month <= 12; ++month) {
        const QString text = QStringLiteral("%1").arg(month, 2, 10, QLatin1Char('0'));
        combo2_->addItem(text);
        combo3_->addItem(text);
    }
    combo2_->setCurrentIndex(0);
    combo3_->setCurrentIndex(QDate::currentDate().month() - 1);
    statement_->InitGridHeader(grid1_);
    view1_->Refresh();
    list1_->addItems(Conditions::LoadDepartments(session));
    list1_->setCurrentRow(-1);
    conditions_.InvoiceTypeList = statement_->LoadInvoiceTypes();
    Layout();
}

MonthlyReportWindow::~MonthlyReportWindow() = default;

QString MonthlyReportWindow::SelectedEntry() const {
    const auto* item = list1_->currentItem();
    return item && item->isSelected() ? item->text() : QString();
}

void MonthlyReportWindow::ClickList1(int row) {
    list1_->setCurrentRow(row);
    title_->setText(statement_->TitleCaption(list1_->item(row)->text(), combo1_->currentText()));
    title_->adjustSize();
    Layout();
}

void MonthlyReportWindow::ShowBusy(const QString& text) {
    label3_->setText(text);
    picture5_->show();
    picture5_->raise();
    AppDialogs().Yield();
}

void MonthlyReportWindow::HideBusy() {
    picture5_->hide();
    QApplication::restoreOverrideCursor();
}

void MonthlyReportWindow::ClickCommand3() {
    try {
        RunReconciliation();
    } catch (const RuntimeError& e) {
        // Nothing traps it: the run stops where it was.
        HideBusy();
        view1_->Refresh();
        ReportRuntimeError(e);
    }
}

void MonthlyReportWindow::RunReconciliation() {
    const QString entry = SelectedEntry();
    if (entry.isEmpty()) {
        AppDialogs().MsgBox(QStringLiteral("请先选择统计部门!"), kSystemTitle,
                            MsgIcon::Information);
        return;
    }
    if (!MonthsInOrder(combo2_->currentText(), combo3_->currentText())) {
        AppDialogs().MsgBox(QStringLiteral("截至月份不能小于开始月份,请重新选择!"), kSystemTitle,
                            MsgIcon::Information);
        combo3_->setFocus();
        return;
    }
    conditions_.DeptCode = Conditions::DeptCodeOf(entry);
    conditions_.SiteCode = Conditions::SiteCodeOf(entry);
    conditions_.Year = combo1_->currentText();
    conditions_.FromMonth = combo2_->currentText();
    conditions_.ToMonth = combo3_->currentText();

    QApplication::setOverrideCursor(Qt::WaitCursor);
    grid1_.SetRows(2);
    view1_->Refresh();
    ShowBusy(texts_.extractingText);
    statement_->ExtractFeeItems(conditions_, grid1_);
    view1_->Refresh();
    if (statement_->FeeItems().size() <= 1) {
        AppDialogs().MsgBox(texts_.noFeeItemsText, kSystemTitle, MsgIcon::Information);
        HideBusy();
        return;
    }
    grid1_.SetRows(2);
    view1_->Refresh();
    ShowBusy(texts_.runningText);
    statement_->RunReconciliation(conditions_, grid1_);
    view1_->Refresh();
    HideBusy();
}

void MonthlyReportWindow::ClickCommand2() {
    // The export reads the combos as they stand now.
    StatementConditions shown = conditions_;
    shown.Year = combo1_->currentText();
    shown.FromMonth = combo2_->currentText();
    shown.ToMonth = combo3_->currentText();
    const ExportFrame::ExportRequest request{
        grid1_.Rows(), grid1_.Rows(), title_->text(), texts_.exportedText,
        [this, shown](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement_->WriteSheet(sheet, steps, {grid1_, title_->text(), SelectedEntry(), shown});
        }};
    lastExport_ = ExportFrame::ExportCommand(request, *this, AppDialogs());
}

void MonthlyReportWindow::SetButtonsVisible(bool visible) {
    command1_->setVisible(visible);
    command2_->setVisible(visible);
}
void MonthlyReportWindow::ShowProgressBar(int maximum) {
    progress_->setRange(0, std::max(maximum, 1));
    progress_->setValue(0);
    progress_->show();
}
void MonthlyReportWindow::SetProgressValue(int value) { progress_->setValue(value); }
void MonthlyReportWindow::HideProgressBar() { progress_->hide(); }

void MonthlyReportWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Layout();
}

// The report window's layout without the pager: Picture6 stays at the bottom
// of the pane and the list fills the pane down to it.
void MonthlyReportWindow::Layout() {
    const int scaleWidth = Twips(width()), scaleHeight = Twips(height());
    auto geo = [](QWidget* w) {
        return QRect(Twips(w->x()), Twips(w->y()), Twips(w->width()), Twips(w->height()));
    };
    QRect p1 = geo(picture1_), p2 = geo(picture2_), p3 = geo(picture3_), p4 = geo(picture4_),
          p6 = geo(picture6_), st = geo(status_), l1 = geo(list1_), g1 = geo(view1_),
          p5 = geo(picture5_), c1 = geo(command1_), c2 = geo(command2_), pb = geo(progress_),
          t0 = geo(title_);
    p1.setWidth(scaleWidth);
    p3.moveTop(p1.height());
    p3.moveLeft(p2.width());
    p3.setHeight(std::max(0, scaleHeight - p3.top() - p4.height() - st.height()));
    p3.setWidth(std::max(0, scaleWidth - p2.width()));
    t0.moveLeft(p3.left() + (p3.width() - t0.width()) / 2);
    p4.moveLeft(p3.left());
    p4.setWidth(p3.width());
    p4.moveTop(p1.height() + p3.height());
    c1.moveLeft(p4.width() - c2.left() - c1.width());
    p6.moveTop(p4.top() - p6.height() + 30);
    l1.setHeight(std::max(0, p6.top() - l1.top() + 60));
    pb.moveLeft(30);
    pb.setWidth(std::max(0, p4.width() - 60));
    g1.setWidth(std::max(0, p3.width() - g1.left() - 60));
    g1.setHeight(std::max(0, p3.height() - g1.top() - 60));
    p5.moveTop((g1.height() - p5.height()) / 2);
    p5.moveLeft((g1.width() - p5.width()) / 2);
    p2.setHeight(std::max(p2.height(), p6.bottom() + 1));
    st.moveTop(scaleHeight - st.height());
    st.setWidth(scaleWidth);
    auto put = [](QWidget* w, const QRect& r) {
        Place(w, r.left(), r.top(), r.width(), r.height());
    };
    put(picture1_, p1), put(picture2_, p2), put(picture3_, p3), put(title_, t0), put(picture4_, p4),
        put(command1_, c1), put(picture6_, p6), put(list1_, l1), put(progress_, pb),
        put(view1_, g1), put(picture5_, p5), put(status_, st);
}

}  // namespace yunqi
