#include "frame/widgets/MonthlyReportWindow.h"

#include <QDate>

#include "core/Dialogs.h"
#include "core/MessageForms.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"

namespace yunqi {

namespace {

const QString kSystemTitle = MessageForms::SystemTitle();

using K = ControlKind;

// The check rule's design width, kept where the strip has room.
constexpr int kRuleWidth = 7800;

// The monthly window's own controls: the year and months over the
// department list, Command3 in Picture6 at the bottom of the pane, and the
// check rule in the button strip.
// clang-format off
const ControlSpec kMonthlyLayout[] = {
    {K::Label,    "Label1(10)", "Picture2", {345, 195, 1300, 255}, ByReport(&ReportTexts::dateRangeLabel)},
    {K::ComboBox, "Combo1",     "Picture2", {285, 480, 900, 300}},
    {K::Label,    "Label1(12)", "Picture2", {1215, 525, 240, 255}, Said("年")},
    {K::ComboBox, "Combo2",     "Picture2", {1470, 480, 660, 300}},
    {K::Label,    "Label1(13)", "Picture2", {2160, 525, 480, 255}, Said("月至 ")},
    {K::ComboBox, "Combo3",     "Picture2", {2640, 480, 660, 300}},
    {K::Label,    "Label1(14)", "Picture2", {3330, 525, 240, 255}, Said("月")},
    {K::Label,    "Label1(11)", "Picture2", {165, 1035, 720, 255}, Said("选择部门")},
    {K::List,     "List1",      "Picture2", {90, 1320, 4305, 7000}},
    {K::Picture,  "Picture6",   "Picture2", {45, 8700, 4290, 600}},
    {K::Button,   "Command3",   "Picture6", {1500, 120, 1290, 345}, Said("开始统计")},
    {K::Label,    "Label2",     "Picture4", {3800, 225, kRuleWidth, 255}, Said("核对:(专用发票+普通发票+收据=财务交账-当月收预开票+当月未收预开票)")},
};
// clang-format on

// The grid has no pager strip above it.
const QRect kGridBox{30, 60, 11865, 7095};

}  // namespace

MonthlyReportWindow::MonthlyReportWindow(const ReportDefinition& report, DatabaseSession& session,
                                         QWidget* parent)
    : ReportWindow(report, session, kMonthlyLayout, parent),
      statement_(MakeStatement<MonthlyStatement>(report, session)) {
    combo1_ = Control<QComboBox>("Combo1");
    combo2_ = Control<QComboBox>("Combo2");
    combo3_ = Control<QComboBox>("Combo3");
    command3_ = Control<QPushButton>("Command3");
    picture6_ = Control("Picture6");
    label2_ = Control<QLabel>("Label2");
    // The rule wraps onto a second line where the strip is narrow.
    label2_->setWordWrap(true);
    label2_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    KeepRoomForTheRule();
    // The list runs a little into the box below it; it is drawn whole.
    List1()->raise();
    PlaceAt(Grid1View(), kGridBox);
    // The progress bar covers the note while an export runs.
    Control("ProgressBar1")->raise();
    OnClick(command3_, [this] { ClickCommand3(); });
    Load();
}

MonthlyReportWindow::~MonthlyReportWindow() = default;

void MonthlyReportWindow::Load() {
    for (int year = 2016; year <= 2049; ++year) combo1_->addItem(QString::number(year));
    combo1_->setCurrentText(QString::number(QDate::currentDate().year()));
    for (int month = 1; month <= 12; ++month) {
        const QString text = QStringLiteral("%1").arg(month, 2, 10, QLatin1Char('0'));
        combo2_->addItem(text);
        combo3_->addItem(text);
    }
    combo2_->setCurrentIndex(0);
    combo3_->setCurrentIndex(QDate::currentDate().month() - 1);
    statement_->InitGridHeader(MutableGrid1());
    Grid1View()->Refresh();
    LoadDepartments();
    MutableChosenConditions().InvoiceTypeList = statement_->LoadInvoiceTypes();
    Relayout();
}

void MonthlyReportWindow::ClickList1() {
    SetTitle(statement_->TitleCaption(SelectedEntry(), combo1_->currentText()));
}

void MonthlyReportWindow::ClickCommand3() {
    try {
        RunReconciliation();
    } catch (const RuntimeError&) {
        // Nothing traps it: the run stops where it was.
        HideBusyPanel();
        RestorePointer();
        Grid1View()->Refresh();
        throw;
    }
}

void MonthlyReportWindow::RunReconciliation() {
    if (SelectedEntry().isEmpty()) {
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
    // What a stopped run puts back.
    std::unique_ptr<MonthlyStatement> kept = statement_->Clone();
    const FlexGrid shownGrid = Grid1();
    const StatementConditions before = ChosenConditions();
    TakeDepartment();
    StatementConditions& k = MutableChosenConditions();
    k.Year = combo1_->currentText();
    k.FromMonth = combo2_->currentText();
    k.ToMonth = combo3_->currentText();
    const StatementConditions asked = k;

    FlexGrid& grid = MutableGrid1();
    SetHourglass();
    grid.SetRows(2);
    Grid1View()->Refresh();
    // The grid is painted meanwhile: each step fills a copy of it.
    const auto step = [&](const std::function<void(FlexGrid&)>& run) {
        FlexGrid filled = grid;
        if (RunAside([&] { run(filled); }, [&] { grid = std::move(filled); })) return true;
        statement_ = std::move(kept);
        EndStoppedRun(before, &shownGrid);
        return false;
    };
    ShowBusyPanel(Texts().extractingText);
    if (!step([&](FlexGrid& g) { statement_->ExtractFeeItems(asked, g); })) return;
    Grid1View()->Refresh();
    if (statement_->FeeItems().size() <= 1) {
        AppDialogs().MsgBox(Texts().noFeeItemsText, kSystemTitle, MsgIcon::Information);
        RestorePointer();
        HideBusyPanel();
        return;
    }
    grid.SetRows(2);
    Grid1View()->Refresh();
    ShowBusyPanel(Texts().runningText);
    if (!step([&](FlexGrid& g) { statement_->RunReconciliation(asked, g); })) return;
    Grid1View()->Refresh();
    HideBusyPanel();
    RestorePointer();
}

ExportFrame::ExportRequest MonthlyReportWindow::MakeExportRequest() {
    // The export reads the combos as they stand now.
    StatementConditions shown = ChosenConditions();
    shown.Year = combo1_->currentText();
    shown.FromMonth = combo2_->currentText();
    shown.ToMonth = combo3_->currentText();
    const int rows = Grid1().Rows();
    // Written beside the window's thread: the texts are read here.
    return {rows, rows, TitleText(), Texts().exportedText,
            [this, shown, title = TitleText(), entry = SelectedEntry()](
                SheetModel& sheet, ExportFrame::ExportSteps& steps) {
                statement_->WriteSheet(sheet, steps, {Grid1(), title, entry, shown});
            }};
}

void MonthlyReportWindow::KeepRoomForTheRule() {
    const QRect c2 = Control("Command2")->geometry();
    const int strip = Control("Picture4")->height();
    // Two lines at most: the narrowest width that holds the text in the strip.
    int width = label2_->fontMetrics().horizontalAdvance(label2_->text()) / 2;
    while (label2_->heightForWidth(width) > strip) width += 4;
    // Left of the rule the design's place, right of it a margin and Command1
    // with Command2's margin mirrored.
    const int margin = label2_->x() - c2.right();
    const int strip4 = label2_->x() + width + margin + c2.width() + c2.x();
    setMinimumWidth(Control("Picture2")->width() + strip4);
}

// The rule between the two buttons, as wide as the design where there is room.
void MonthlyReportWindow::LayoutResultArea() {
    const QRect c2 = Control("Command2")->geometry(), c1 = Control("Command1")->geometry();
    const int margin = label2_->x() - c2.right();
    const int room = c1.left() - margin - label2_->x();
    label2_->setGeometry(label2_->x(), 0, std::clamp(room, 0, Pixels(kRuleWidth)),
                         Control("Picture4")->height());
}

// Picture6 stays at the bottom of the pane; the list fills the pane down to it.
void MonthlyReportWindow::LayoutConditionPane() {
    QRect box = TwipsBox(picture6_), list = TwipsBox(List1());
    box.moveTop(TwipsBox(Control("Picture4")).top() - box.height() + 30);
    list.setHeight(std::max(0, box.top() - list.top() + 60));
    PlaceAt(picture6_, box);
    PlaceAt(List1(), list);
}

}  // namespace yunqi
