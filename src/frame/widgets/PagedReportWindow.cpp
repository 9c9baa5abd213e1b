#include "frame/widgets/PagedReportWindow.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPolygonF>

#include "core/Dialogs.h"
#include "core/MessageForms.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "frame/Pager.h"
#include "frame/SplitRatios.h"
#include "frame/widgets/QtTextMeasure.h"

namespace yunqi {

namespace {

const QString kSystemTitle = MessageForms::SystemTitle();
// The ratio grid's 停车费项目 column.
constexpr int kItemNameCol = 1;

using K = ControlKind;

// The paged window's own controls: the condition pane and the pager strip.
// clang-format off
const ControlSpec kPagedLayout[] = {
    {K::Picture,    "Picture6",     "Picture2", {45, 120, 4290, 1365}},
    {K::Label,      "Label1(10)",   "Picture6", {345, 75, 1080, 255}, ByReport(&ReportTexts::dateRangeLabel)},
    {K::DatePicker, "DTPicker1(0)", "Picture6", {285, 360, 1605, 375}},
    {K::Label,      "Label1(13)",   "Picture6", {1965, 405, 180, 255}, Said("至")},
    {K::DatePicker, "DTPicker1(1)", "Picture6", {2265, 360, 1605, 375}},
    {K::Button,     "Command3",     "Picture6", {345, 870, 1290, 345}, Said("提取收费项目")},
    {K::Button,     "Command6",     "Picture6", {2400, 870, 1290, 345}, Said("开始统计")},
    {K::Label,      "Label1(3)",    "Picture2", {180, 1575, 1620, 255}, Said("设置停车费分账比例")},
    {K::Grid,       "MSFlexGrid2",  "Picture2", {105, 1860, 4290, 1770}},
    {K::TextBox,    "txtGRD",       "Picture2", {3015, 2775, 735, 300}, {}, ControlFont::Normal, kHidden},
    {K::Label,      "Label1(11)",   "Picture2", {165, 3735, 720, 255}, Said("选择部门")},
    {K::List,       "List1",        "Picture2", {90, 4020, 4305, 2835}},
    {K::Picture,    "Picture8",     "Picture3", {5370, 45, 5370, 360}},
    {K::Image,      "Image2(0)",    "Picture8", {180, 30, 330, 300}, Said("首页")},
    {K::Image,      "Image2(1)",    "Picture8", {540, 30, 330, 300}, Said("上一页")},
    {K::Label,      "Label19",      "Picture8", {1230, 60, 1440, 255}, Said("第 00 页 共 00 页")},
    {K::Image,      "Image2(2)",    "Picture8", {2835, 30, 330, 300}, Said("下一页")},
    {K::Image,      "Image2(3)",    "Picture8", {3195, 30, 330, 300}, Said("尾页")},
    {K::Label,      "Label21",      "Picture8", {3780, 75, 360, 255}, Said("转到")},
    {K::TextBox,    "Text6",        "Picture8", {4215, 75, 465, 240}},
    {K::Label,      "Label22",      "Picture8", {4755, 75, 240, 255}, Said("页")},
    {K::Label,      "Label2",       "Picture3", {420, 90, 2370, 300}, Said("正在导出数据，请稍等......"), ControlFont::Normal, kHidden},
};
// clang-format on

// Enter in a text box runs the handler; other keys go into the box.
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

PagedReportWindow::PagedReportWindow(const ReportDefinition& report, DatabaseSession& session,
                                     QWidget* parent)
    : ReportWindow(report, session, kPagedLayout, parent),
      statement_(MakeStatement<PagedStatement>(report, session)),
      grid2_(SplitRatios::NewGrid()) {
    picture8_ = Control("Picture8");
    label19_ = Control<QLabel>("Label19");
    label2_ = Control<QLabel>("Label2");
    from_ = Control<QDateEdit>("DTPicker1(0)");
    to_ = Control<QDateEdit>("DTPicker1(1)");
    command3_ = Control<QPushButton>("Command3");
    command6_ = Control<QPushButton>("Command6");
    view2_ = Control<FlexGridView>("MSFlexGrid2");
    text6_ = Control<QLineEdit>("Text6");
    txtGrd_ = Control<QLineEdit>("txtGRD");
    view2_->SetGrid(grid2_);
    // Both shares in sight: the item names give up width first.
    view2_->FitToView(kItemNameCol);
    FitPageLabel();

    OnClick(command3_, [this] { ClickCommand3(); });
    OnClick(command6_, [this] { ClickCommand6(); });
    for (int i = 0; i < 4; ++i) {
        auto* image = Control<QToolButton>(QStringLiteral("Image2(%1)").arg(i));
        image->setIcon(PagerIcon(i));
        OnClick(image, [this, i] { ClickImage2(i); });
    }
    connect(view2_, &FlexGridView::CellClicked, this,
            [this](int r, int c) { Handle([=, this] { ClickGrid2(r, c); }); });
    text6_->installEventFilter(new EnterFilter(this, [this] { Handle([this] { EnterText6(); }); }));
    txtGrd_->installEventFilter(
        new EnterFilter(this, [this] { Handle([this] { EnterTxtGrd(); }); }));
    Load();
}

PagedReportWindow::~PagedReportWindow() = default;

void PagedReportWindow::FitPageLabel() {
    // Page counts run to five digits: the label takes the longest text whole,
    // and the controls right of it move over to make room.
    const int needed = label19_->fontMetrics().horizontalAdvance(Pager::PageText(99999, 99999)) + 4;
    const int extra = needed - label19_->width();
    if (extra <= 0) return;
    const int right = label19_->geometry().right();
    for (QWidget* w : picture8_->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (w != label19_ && w->x() > right) w->move(w->x() + extra, w->y());
    label19_->resize(needed, label19_->height());
    picture8_->resize(picture8_->width() + extra, picture8_->height());
}

void PagedReportWindow::Load() {
    for (QDateEdit* d : {from_, to_}) {
        d->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
        d->setDate(QDate::currentDate());
    }
    view2_->Refresh();
    command6_->setEnabled(false);
    statement_->InitGridHeader(MutableGrid1());
    Grid1View()->Refresh();
    LoadDepartments();
    MutableChosenConditions().InvoiceTypeList = Conditions::LoadInvoiceTypes(Session());
}

void PagedReportWindow::ClickCommand3() {
    const QString entry = SelectedEntry();
    if (const auto problem =
            Conditions::CheckConditions(!entry.isEmpty(), from_->date(), to_->date())) {
        AppDialogs().MsgBox(Conditions::MessageOf(*problem), kSystemTitle, MsgIcon::Information);
        if (*problem == Conditions::ConditionProblem::EndBeforeStart) to_->setFocus();
        return;
    }
    const StatementConditions before = ChosenConditions();
    TakeDepartment();
    StatementConditions& conditions = MutableChosenConditions();
    conditions.From = from_->date();
    conditions.To = to_->date();
    SetHourglass();
    ShowBusyPanel(Texts().extractingText);
    // The grids are painted meanwhile: the run fills copies of them.
    std::unique_ptr<PagedStatement> kept = statement_->Clone();
    FlexGrid ratios = grid2_, statementGrid = Grid1();
    const StatementConditions asked = conditions;
    if (!RunAside([&] { statement_->ExtractFeeItems(asked, ratios, statementGrid); },
                  [&] {
                      grid2_ = std::move(ratios);
                      MutableGrid1() = std::move(statementGrid);
                  })) {
        statement_ = std::move(kept);
        EndStoppedRun(before);
        return;
    }
    // The shown page went with the grid's rows; so does its page text.
    if (Grid1().Rows() <= 2) label19_->setText(Pager::EmptyPageText());
    txtGrd_->hide();
    view2_->Refresh();
    Grid1View()->Refresh();
    HideBusyPanel();
    RestorePointer();
    if (statement_->FeeItems().size() > 1)
        command6_->setEnabled(true);
    else
        AppDialogs().MsgBox(Texts().noFeeItemsText, kSystemTitle, MsgIcon::Information);
}

void PagedReportWindow::BuildGridHeader() {
    statement_->BuildGridHeader(MutableGrid1(), grid2_);
    Grid1View()->Refresh();
}

void PagedReportWindow::LayHeaderAndDisableCommand6() {
    if (Report().headerBeforeDisable) {
        BuildGridHeader();
        command6_->setEnabled(false);
    } else {
        command6_->setEnabled(false);
        BuildGridHeader();
    }
}

void PagedReportWindow::ClickCommand6() {
    if (statement_->FeeItems().size() <= 1) return;
    // What a stopped run puts back.
    std::unique_ptr<PagedStatement> kept = statement_->Clone();
    const FlexGrid shownGrid = Grid1();
    const StatementConditions before = ChosenConditions();
    const int shownPage = currentPage_;
    const bool ranBefore = ran_;
    // Command6 stays disabled after the run: only a new extraction enables it.
    LayHeaderAndDisableCommand6();
    SetHourglass();
    currentPage_ = 1;
    MutableGrid1().SetRows(2);
    Grid1View()->Refresh();
    ShowBusyPanel(Texts().runningText);
    // The dates are read again, as the pickers stand now.
    StatementConditions& conditions = MutableChosenConditions();
    conditions.From = from_->date();
    conditions.To = to_->date();
    ran_ = true;
    const StatementConditions asked = conditions;
    PagedStatement::RunOutcome outcome;
    if (!RunAside([&, pageSize = pageSize_] {
            outcome = statement_->RunStatistics(asked, grid2_, pageSize);
        })) {
        statement_ = std::move(kept);
        currentPage_ = shownPage;
        ran_ = ranBefore;
        EndStoppedRun(before, &shownGrid);
        return;
    }
    if (outcome) {
        ShowPage();
    } else {
        MutableGrid1().SetRows(2);
        Grid1View()->Refresh();
        label19_->setText(Pager::EmptyPageText());
        AppDialogs().MsgBox(Texts().noRowsText, kSystemTitle, MsgIcon::Information);
    }
    // The panel goes and the pointer comes back only after the page or the
    // message.
    HideBusyPanel();
    RestorePointer();
}

void PagedReportWindow::ShowPage() {
    // Record numbers run to the statement's last; each shows whole.
    Grid1View()->KeepWhole(0, QString::number(statement_->UpperBound()));
    statement_->ShowPage(MutableGrid1(), currentPage_, pageSize_,
                         QtTextMeasure(Grid1View()->font()));
    Grid1View()->Refresh();
    // Every page from its first row.
    Grid1View()->scrollToTop();
    label19_->setText(Pager::PageText(currentPage_, statement_->PageCount()));
}

void PagedReportWindow::ClickImage2(int index) {
    // Left as the window has always behaved: before the first run there is
    // no row array, and the grid's two header rows let the click through
    // (its guard is for a grid of one row). The failed access is a run-time
    // error, which ends the program through its run-time error report.
    if (!ran_) throw RuntimeError::SubscriptOutOfRange();
    // After a run without rows there are no pages to go to.
    if (statement_->PageCount() < 1) return;
    currentPage_ =
        Pager::TargetPage(Pager::PagerImage(index), currentPage_, statement_->PageCount());
    ShowPage();
}

void PagedReportWindow::EnterText6() {
    // Safe before a run: there are no pages, and the box is emptied.
    const auto page = Pager::PageFromText(text6_->text(), statement_->PageCount());
    if (!page) {
        text6_->clear();
        return;
    }
    currentPage_ = *page;
    ShowPage();
}

void PagedReportWindow::ClickGrid2(int row, int col) {
    txtGrd_->hide();
    // The heading row is fixed: it is no cell to edit.
    if (row < grid2_.FixedRows()) return;
    grid2_.SetRow(row);
    grid2_.SetCol(col);
    if (col != SplitRatios::kDeveloperCol && col != SplitRatios::kPropertyCol) return;
    // Over the cell as the grid is scrolled now.
    view2_->scrollTo(view2_->model()->index(row, col));
    const QRect cell = view2_->CellRect(row, col);
    txtGrd_->setGeometry(
        QRect(view2_->mapTo(txtGrd_->parentWidget(), cell.topLeft()), cell.size()));
    txtGrd_->setText(grid2_.TextMatrix(row, col));
    txtGrd_->show();
    txtGrd_->raise();
    txtGrd_->setFocus();
    txtGrd_->selectAll();
}

void PagedReportWindow::EnterTxtGrd() {
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

ExportFrame::ExportRequest PagedReportWindow::MakeExportRequest() {
    // The workbook's date line reads the pickers as they stand now.
    StatementConditions shown = ChosenConditions();
    shown.From = from_->date();
    shown.To = to_->date();
    const QString title = TitleText();
    return {Grid1().Rows(), statement_->UpperBound(),
            ExportFrame::DefaultFileName(title, from_->date(), to_->date()), Texts().exportedText,
            // Written beside the window's thread: the texts are read here.
            [this, shown, title, entry = SelectedEntry()](SheetModel& sheet,
                                                          ExportFrame::ExportSteps& steps) {
                statement_->WriteSheet(sheet, steps, {Grid1(), title, entry, shown});
            }};
}

void PagedReportWindow::SetExportLabelVisible(bool visible) { label2_->setVisible(visible); }

void PagedReportWindow::LayoutResultArea() {
    const QRect p3 = TwipsBox(Control("Picture3"));
    QRect p8 = TwipsBox(picture8_);
    p8.moveLeft((p3.width() - p8.width()) / 2);
    PlaceAt(picture8_, p8);
    // The page follows the window; a minimised window keeps the last size.
    // The whole grid's height over the row height as drawn (the font makes
    // rows taller than the design's), as the page rule counts them.
    const int gridHeight = Grid1View()->height(), rowHeight = Grid1View()->DrawnRowHeight(0);
    if (gridHeight > 2 * rowHeight) pageSize_ = Pager::PageSizeFor(gridHeight, rowHeight);
}

}  // namespace yunqi
