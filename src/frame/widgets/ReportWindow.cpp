#include "frame/widgets/ReportWindow.h"
#include "frame/widgets/MonthlyReportWindow.h"

#include <QApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QPainter>
#include <QPolygonF>
#include <QTimer>

#include "frame/Conditions.h"
#include "frame/Pager.h"
#include "frame/SplitRatios.h"
#include "frame/widgets/QtTextMeasure.h"
#include "frame/xlsx/ExportFrame.h"
#include "db/SessionState.h"

namespace yunqi {

namespace {

constexpr int kTwipsPerPixel = 15;
const QString kSystemTitle = QStringLiteral("系统提示");

// Design boxes are in twips; the screen shows 15 twips a pixel.
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
T* Named(QWidget* parent, const char* name) {
    T* w = new T(parent);
    w->setObjectName(QString::fromUtf8(name));
    return w;
}

QLabel* Label(QWidget* parent, const char* name, const QString& text) {
    QLabel* l = Named<QLabel>(parent, name);
    l->setText(text);
    return l;
}

// Enter in a line edit runs the handler.
class EnterFilter : public QObject {
  public:
    EnterFilter(QObject* parent, std::function<void()> onEnter)
        : QObject(parent), onEnter_(std::move(onEnter)) {}
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(e)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                onEnter_();
                return true;
            }
        }
        return false;
    }

  private:
    std::function<void()> onEnter_;
};

// The four small pager images: a bar and a triangle for the ends, a triangle
// for a step, pointing left for 0 and 1 and right for 2 and 3.
QIcon PagerIcon(int index) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 96, 160));
    const bool left = index < 2;
    const QPolygonF triangle =
        left ? QPolygonF({{11, 3}, {11, 13}, {4, 8}}) : QPolygonF({{5, 3}, {5, 13}, {12, 8}});
    p.drawPolygon(triangle);
    if (index == 0) p.drawRect(2, 3, 2, 10);
    if (index == 3) p.drawRect(12, 3, 2, 10);
    return QIcon(pixmap);
}

}  // namespace

ReportWindow::ReportWindow(const ReportDefinition& report, DatabaseSession& session,
                           QWidget* parent)
    : QWidget(parent),
      report_(report),
      texts_(report.texts),
      statement_(report.makePaged(session)),
      session_(session),
      grid2_(SplitRatios::NewGrid()) {
    const ReportTexts& texts = texts_;
    setObjectName(report.windowName);
    setWindowTitle(texts.caption);
    setAttribute(Qt::WA_DeleteOnClose);
    setFont(Yahei(9, false));
    resize(18120 / kTwipsPerPixel, 10950 / kTwipsPerPixel);

    picture1_ = Named<QWidget>(this, "Picture1");
    Place(picture1_, 0, 0, 18120, 465);
    conditionsTitle_ = Label(picture1_, "Label1(1)", texts.conditionsTitle);
    conditionsTitle_->setFont(Yahei(10.5, true));
    Place(conditionsTitle_, 195, 90, 1890, 285);
    title_ = Label(picture1_, "Label1(0)", texts.title);
    title_->setFont(Yahei(12, true));
    Place(title_, 7905, 105, 1920, 330);
    title_->adjustSize();

    picture2_ = Named<QWidget>(this, "Picture2");
    Place(picture2_, 0, 465, 4440, 10170);
    picture6_ = Named<QWidget>(picture2_, "Picture6");
    Place(picture6_, 45, 120, 4290, 1365);
    Place(Label(picture6_, "Label1(10)", texts.dateRangeLabel), 345, 75, 1080, 255);
    from_ = Named<QDateEdit>(picture6_, "DTPicker1(0)");
    to_ = Named<QDateEdit>(picture6_, "DTPicker1(1)");
    for (QDateEdit* d : {from_, to_}) {
        d->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
        d->setCalendarPopup(true);
        d->setDate(QDate::currentDate());
    }
    Place(from_, 285, 360, 1605, 375);
    Place(Label(picture6_, "Label1(13)", QStringLiteral("至")), 1965, 405, 180, 255);
    Place(to_, 2265, 360, 1605, 375);
    command3_ = Named<QPushButton>(picture6_, "Command3");
    command3_->setText(QStringLiteral("提取收费项目"));
    Place(command3_, 345, 870, 1290, 345);
    command6_ = Named<QPushButton>(picture6_, "Command6");
    command6_->setText(QStringLiteral("开始统计"));
    Place(command6_, 2400, 870, 1290, 345);
    Place(Label(picture2_, "Label1(3)", QStringLiteral("设置停车费分账比例")), 180, 1575, 1620,
          255);
    view2_ = new FlexGridView(grid2_, picture2_);
    view2_->setObjectName(QStringLiteral("MSFlexGrid2"));
    Place(view2_, 105, 1860, 4290, 1770);
    txtGrd_ = Named<QLineEdit>(picture2_, "txtGRD");
    Place(txtGrd_, 3015, 2775, 735, 300);
    txtGrd_->hide();
    Place(Label(picture2_, "Label1(11)", QStringLiteral("选择部门")), 165, 3735, 720, 255);
    list1_ = Named<QListWidget>(picture2_, "List1");
    Place(list1_, 90, 4020, 4305, 2835);

    picture3_ = Named<QWidget>(this, "Picture3");
    Place(picture3_, 4440, 480, 12660, 9135);
    picture8_ = Named<QWidget>(picture3_, "Picture8");
    Place(picture8_, 5370, 45, 5370, 360);
    const int imageLeft[] = {180, 540, 2835, 3195};
    for (int i = 0; i < 4; ++i) {
        image2_[i] =
            Named<QToolButton>(picture8_, QStringLiteral("Image2(%1)").arg(i).toUtf8().constData());
        image2_[i]->setIcon(PagerIcon(i));
        image2_[i]->setToolTip(Pager::ToolTipOf(Pager::PagerImage(i)));
        image2_[i]->setAutoRaise(true);
        Place(image2_[i], imageLeft[i], 30, 330, 300);
        connect(image2_[i], &QToolButton::clicked, this, [this, i] { ClickImage2(i); });
    }
    label19_ = Label(picture8_, "Label19", Pager::EmptyPageText());
    Place(label19_, 1230, 60, 1440, 255);
    Place(Label(picture8_, "Label21", QStringLiteral("转到")), 3780, 75, 360, 255);
    text6_ = Named<QLineEdit>(picture8_, "Text6");
    Place(text6_, 4215, 75, 465, 240);
    Place(Label(picture8_, "Label22", QStringLiteral("页")), 4755, 75, 240, 255);
    view1_ = new FlexGridView(grid1_, picture3_);
    view1_->setObjectName(QStringLiteral("MSFlexGrid1"));
    Place(view1_, 30, 420, 11865, 7095);
    picture5_ = Named<QWidget>(view1_, "Picture5");
    picture5_->setAutoFillBackground(true);
    picture5_->setStyleSheet(QStringLiteral("background-color: rgb(192,192,255);"));
    Place(picture5_, 3675, 3300, 5340, 495);
    label3_ = Label(picture5_, "Label3", QString());
    Place(label3_, 240, 75, 3930, 285);
    picture5_->hide();
    label2_ = Label(picture3_, "Label2", QStringLiteral("正在导出数据，请稍等......"));
    Place(label2_, 420, 90, 2370, 300);
    label2_->hide();

    picture4_ = Named<QWidget>(this, "Picture4");
    Place(picture4_, 4575, 9915, 14700, 585);
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
    const SessionState& session0 = AppSession();
    const QString panels[] = {QStringLiteral("操作员"),
                              session0.SessionOperatorText,
                              QStringLiteral("部门"),
                              session0.SessionDepartmentText,
                              QStringLiteral("岗位"),
                              session0.SessionPostText,
                              QStringLiteral("云栖账房"),
                              QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")),
                              QTime::currentTime().toString(QStringLiteral("HH:mm:ss"))};
    QLabel* clock[2] = {};
    for (int i = 0; i < 9; ++i) {
        auto* panel =
            Label(status_, QStringLiteral("Panel%1").arg(i + 1).toUtf8().constData(), panels[i]);
        status_->addWidget(panel, i == 6 ? 1 : 0);
        if (i >= 7) clock[i - 7] = panel;
    }
    // Panels 8 and 9 keep showing the date and time.
    auto* tick = new QTimer(this);
    connect(tick, &QTimer::timeout, this, [date = clock[0], time = clock[1]] {
        date->setText(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
        time->setText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
    });
    tick->start(1000);

    connect(command1_, &QPushButton::clicked, this, &QWidget::close);
    connect(command2_, &QPushButton::clicked, this, [this] { ClickCommand2(); });
    connect(command3_, &QPushButton::clicked, this, [this] { ClickCommand3(); });
    connect(command6_, &QPushButton::clicked, this, [this] { ClickCommand6(); });
    connect(list1_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* it) { ClickList1(list1_->row(it)); });
    connect(view2_, &QTableWidget::cellClicked, this, [this](int r, int c) { ClickGrid2(r, c); });
    text6_->installEventFilter(new EnterFilter(this, [this] { EnterText6(); }));
    txtGrd_->installEventFilter(new EnterFilter(this, [this] { EnterTxtGrd(); }));

    // Load, in its order.
    command6_->setEnabled(false);
    statement_->InitGridHeader(grid1_);
    view1_->Refresh();
    list1_->addItems(Conditions::LoadDepartments(session_));
    conditions_.InvoiceTypeList = Conditions::LoadInvoiceTypes(session_);
    Layout();
}

ReportWindow::~ReportWindow() = default;

QWidget* NewReportWindow(const ReportDefinition& report, DatabaseSession& session) {
    if (report.conditions == ConditionsKind::YearMonths) return new MonthlyReportWindow(report, session);
    return new ReportWindow(report, session);
}

QString ReportWindow::SelectedEntry() const {
    const auto* item = list1_->currentItem();
    return item && item->isSelected() ? item->text() : QString();
}

void ReportWindow::ClickList1(int row) {
    list1_->setCurrentRow(row);
    title_->setText(Conditions::TitleCaption(list1_->item(row)->text(), texts_.title));
    title_->adjustSize();
    Layout();
}

void ReportWindow::ShowBusy(const QString& text) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    label3_->setText(text);
    picture5_->show();
    picture5_->raise();
    AppDialogs().Yield();
}

void ReportWindow::HideBusy() {
    picture5_->hide();
    QApplication::restoreOverrideCursor();
}

void ReportWindow::ClickCommand3() {
    const QString entry = SelectedEntry();
    if (const auto problem =
            Conditions::CheckConditions(!entry.isEmpty(), from_->date(), to_->date())) {
        AppDialogs().MsgBox(Conditions::MessageOf(*problem), kSystemTitle, MsgIcon::Information);
        if (*problem == Conditions::ConditionProblem::EndBeforeStart) to_->setFocus();
        return;
    }
    conditions_.DeptCode = Conditions::DeptCodeOf(entry);
    conditions_.SiteCode = Conditions::SiteCodeOf(entry);
    conditions_.From = from_->date();
    conditions_.To = to_->date();
    ShowBusy(texts_.extractingText);
    statement_->ExtractFeeItems(conditions_, grid2_, grid1_);
    view2_->Refresh();
    view1_->Refresh();
    HideBusy();
    if (statement_->FeeItems().size() > 1)
        command6_->setEnabled(true);
    else
        AppDialogs().MsgBox(texts_.noFeeItemsText, kSystemTitle, MsgIcon::Information);
}

void ReportWindow::ClickCommand6() {
    if (statement_->FeeItems().size() <= 1) return;
    command6_->setEnabled(false);
    // The dates are read again at each step, as the pickers stand.
    conditions_.From = from_->date();
    conditions_.To = to_->date();
    statement_->BuildGridHeader(grid1_, grid2_);
    grid1_.SetRows(2);
    view1_->Refresh();
    ShowBusy(texts_.runningText);
    const bool rows = statement_->RunStatistics(conditions_, grid2_, pageSize_);
    HideBusy();
    currentPage_ = 1;
    if (rows) {
        ShowCurrentPage();
    } else {
        label19_->setText(Pager::EmptyPageText());
        AppDialogs().MsgBox(texts_.noRowsText, kSystemTitle, MsgIcon::Information);
    }
}

void ReportWindow::ShowCurrentPage() {
    statement_->ShowPage(grid1_, currentPage_, pageSize_, QtTextMeasure(view1_->font()));
    view1_->Refresh();
    label19_->setText(Pager::PageText(currentPage_, statement_->PageCount()));
}

void ReportWindow::ClickImage2(int index) {
    if (statement_->PageCount() < 1) return;
    currentPage_ =
        Pager::TargetPage(Pager::PagerImage(index), currentPage_, statement_->PageCount());
    ShowCurrentPage();
}

void ReportWindow::EnterText6() {
    const auto page = Pager::PageFromText(text6_->text(), statement_->PageCount());
    if (!page) {
        text6_->clear();
        return;
    }
    currentPage_ = *page;
    ShowCurrentPage();
}

void ReportWindow::ClickGrid2(int row, int col) {
    txtGrd_->hide();
    grid2_.SetRow(row);
    grid2_.SetCol(col);
    if (col != SplitRatios::kDeveloperCol && col != SplitRatios::kPropertyCol) return;
    const QRect cell = view2_->visualRect(view2_->model()->index(row, col));
    const QPoint at = view2_->viewport()->mapTo(picture2_, cell.topLeft());
    txtGrd_->setGeometry(QRect(at, cell.size()));
    txtGrd_->setText(grid2_.TextMatrix(row, col));
    txtGrd_->show();
    txtGrd_->raise();
    txtGrd_->setFocus();
    txtGrd_->selectAll();
}

void ReportWindow::EnterTxtGrd() {
    const int row = grid2_.Row();
    grid2_.SetTextMatrix(row, grid2_.Col(), txtGrd_->text());
    view2_->Refresh();
    if (grid2_.Col() == SplitRatios::kDeveloperCol) {
        ClickGrid2(row, SplitRatios::kPropertyCol);
        return;
    }
    txtGrd_->hide();
    if (!SplitRatios::SumIsHundred(grid2_, row)) {
        AppDialogs().MsgBox(SplitRatios::SumMessage(), kSystemTitle, MsgIcon::Information);
        ClickGrid2(row, SplitRatios::kDeveloperCol);
    }
}

void ReportWindow::ClickCommand2() {
    // The workbook's date line reads the pickers as they stand now.
    StatementConditions shown = conditions_;
    shown.From = from_->date();
    shown.To = to_->date();
    const ExportFrame::ExportRequest request{
        grid1_.Rows(), statement_->UpperBound(),
        ExportFrame::DefaultFileName(title_->text(), from_->date(), to_->date()),
        texts_.exportedText, [this, shown](SheetModel& sheet, ExportFrame::ExportSteps& steps) {
            statement_->WriteSheet(sheet, steps,
                                   {grid1_, title_->text(), SelectedEntry(), shown});
        }};
    lastExport_ = ExportFrame::ExportCommand(request, *this, AppDialogs());
}

void ReportWindow::SetButtonsVisible(bool visible) {
    command1_->setVisible(visible);
    command2_->setVisible(visible);
}
void ReportWindow::ShowProgressBar(int maximum) {
    progress_->setRange(0, std::max(maximum, 1));
    progress_->setValue(0);
    progress_->show();
}
void ReportWindow::SetProgressValue(int value) { progress_->setValue(value); }
void ReportWindow::HideProgressBar() { progress_->hide(); }
void ReportWindow::SetBusyLabelVisible(bool visible) { label2_->setVisible(visible); }

void ReportWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Layout();
}

void ReportWindow::Layout() {
    const int scaleWidth = Twips(width()), scaleHeight = Twips(height());
    auto geo = [](QWidget* w) {
        return QRect(Twips(w->x()), Twips(w->y()), Twips(w->width()), Twips(w->height()));
    };
    QRect p1 = geo(picture1_), p2 = geo(picture2_), p3 = geo(picture3_), p4 = geo(picture4_),
          p8 = geo(picture8_), st = geo(status_), l1 = geo(list1_), g1 = geo(view1_),
          p5 = geo(picture5_), c1 = geo(command1_), c2 = geo(command2_), pb = geo(progress_),
          t0 = geo(title_);
    p1.setWidth(scaleWidth);
    p3.moveTop(p1.height());
    p3.moveLeft(p2.width());
    p3.setHeight(std::max(0, scaleHeight - p3.top() - p4.height() - st.height()));
    p3.setWidth(std::max(0, scaleWidth - p2.width()));
    p8.moveLeft((p3.width() - p8.width()) / 2);
    t0.moveLeft(p3.left() + (p3.width() - t0.width()) / 2);
    p4.moveLeft(p3.left());
    p4.setWidth(p3.width());
    p4.moveTop(p1.height() + p3.height());
    c1.moveLeft(p4.width() - c2.left() - c1.width());
    l1.setHeight(std::max(0, scaleHeight - p1.height() - l1.top() - st.height()));
    pb.moveLeft(30);
    pb.setWidth(std::max(0, p4.width() - 60));
    g1.setWidth(std::max(0, p3.width() - g1.left() - 60));
    g1.setHeight(std::max(0, p3.height() - g1.top() - 60));
    // A minimised window keeps the last page size.
    if (g1.height() > 2 * grid1_.RowHeight(0))
        pageSize_ = Pager::PageSizeFor(g1.height(), grid1_.RowHeight(0));
    p5.moveTop((g1.height() - p5.height()) / 2);
    p5.moveLeft((g1.width() - p5.width()) / 2);
    st.moveTop(scaleHeight - st.height());
    st.setWidth(scaleWidth);
    auto put = [](QWidget* w, const QRect& r) {
        Place(w, r.left(), r.top(), r.width(), r.height());
    };
    put(picture1_, p1), put(picture3_, p3), put(picture8_, p8), put(title_, t0), put(picture4_, p4),
        put(command1_, c1), put(list1_, l1), put(progress_, pb), put(view1_, g1),
        put(picture5_, p5), put(status_, st);
}

}  // namespace yunqi
