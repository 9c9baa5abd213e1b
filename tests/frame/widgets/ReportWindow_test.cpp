// The invoice window as an operator meets it: opened from the menu of the
// main window, driven by mouse and keys in a real event loop.
#include "frame/widgets/ReportWindow.h"

#include <gtest/gtest.h>

#include <QDateEdit>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolButton>

#include "cli/DemoDatabase.h"
#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "db/SessionState.h"
#include "frame/widgets/EventDriver.h"
#include "frame/widgets/PagedReportWindow.h"
#include "reports/Reports.h"
#include "shell/widgets/MainWindow.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

const QString kEntry = QStringLiteral("增值税开票明细表");

// A statement that tells the test what the window shows while it works.
class WatchedStatement : public PagedStatement {
  public:
    struct Hooks {
        std::function<void()> onBuildHeader, onShowPage;
    };
    WatchedStatement(std::unique_ptr<PagedStatement> inner, const Hooks& hooks)
        : inner_(std::move(inner)), hooks_(hooks) {}
    void InitGridHeader(FlexGrid& g) const override { inner_->InitGridHeader(g); }
    void ExtractFeeItems(const StatementConditions& c, FlexGrid& g2, FlexGrid& g1) override {
        inner_->ExtractFeeItems(c, g2, g1);
    }
    void BuildGridHeader(FlexGrid& g1, const FlexGrid& g2) override {
        if (hooks_.onBuildHeader) hooks_.onBuildHeader();
        inner_->BuildGridHeader(g1, g2);
    }
    bool RunStatistics(const StatementConditions& c, const FlexGrid& g2, int size) override {
        return inner_->RunStatistics(c, g2, size);
    }
    void ShowPage(FlexGrid& g, int page, int size, const TextMeasure& m) const override {
        inner_->ShowPage(g, page, size, m);
        if (hooks_.onShowPage) hooks_.onShowPage();
    }
    void WriteRow(GridRow& row, int r, const TextMeasure& m) const override {
        inner_->WriteRow(row, r, m);
    }
    void WriteSheet(SheetModel& s, ExportFrame::ExportSteps& st,
                    const WorkbookContext& c) const override {
        inner_->WriteSheet(s, st, c);
    }
    const FeeItemList& FeeItems() const override { return inner_->FeeItems(); }
    int FeeColumnCount() const override { return inner_->FeeColumnCount(); }
    int PageCount() const override { return inner_->PageCount(); }
    int UpperBound() const override { return inner_->UpperBound(); }

  private:
    std::unique_ptr<PagedStatement> inner_;
    const Hooks& hooks_;
};

// Message boxes recorded with the state of the window at the moment.
class WatchingDialogs : public RecordingDialogs {
  public:
    std::function<void()> onMessage;
    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override {
        if (onMessage) onMessage();
        return RecordingDialogs::MsgBox(text, title, icon, buttons);
    }
};

std::vector<long>& RecordedErrors() {
    static std::vector<long> errors;
    return errors;
}

// A ledger of 45 tickets of department 01 in March 2024 with one parking
// item, and 30 more departments, so that the list is longer than its pane.
class InvoiceWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        RecordedErrors().clear();
        SetRuntimeErrorHandler(
            [](const RuntimeError& e) { RecordedErrors().push_back(e.number()); });
        db.Exec("BEGIN");  // one write to the disk, not one a row
        db.Department("01", "GY01", "云栖苑");
        for (int i = 2; i <= 31; ++i) {
            const QString code = QString("%1").arg(i, 2, 10, QChar('0'));
            db.Department(code, "GY" + code, "分部" + code);
        }
        db.Types("01");
        db.Item("01", "物业费", "0.06", "物业");
        db.Item("07", "停车费", "0.05", "停车收费");
        db.Methods({"现金"});
        for (int i = 1; i <= 45; ++i)
            db.Add({.no = QString("%1").arg(i, 5, 10, QChar('0')), .issued = "2024-03-10",
                    .amount = 100, .item = i % 2 ? "01" : "07", .dept = "01"});
        db.Exec("COMMIT");
        session = db.Session();
        definition = *FindReport("invoice");
        definition.makePaged = [this](DatabaseSession& s) {
            return std::make_unique<WatchedStatement>(FindReport("invoice")->makePaged(s), hooks);
        };
        main = std::make_unique<MainWindow>(std::map<QString, MainWindow::WindowFactory>{
            {kEntry, [this] { return NewReportWindow(definition, *session); }}});
        main->resize(1400, 1000);
        main->show();
        Settle();
    }
    void TearDown() override {
        main.reset();
        SetRuntimeErrorHandler(nullptr);
        SetAppDialogs(nullptr);
    }

    PagedReportWindow* OpenFromMenu() {
        ChooseFromMenu(main->menuBar(), QStringLiteral("统计报表"), kEntry);
        return qobject_cast<PagedReportWindow*>(main->OpenWindow(kEntry));
    }
    QMdiSubWindow* Frame(QWidget* w) { return qobject_cast<QMdiSubWindow*>(w->parentWidget()); }

    template <typename T = QWidget>
    static T* Child(QWidget* w, const char* name) {
        T* child = w->findChild<T*>(QString::fromUtf8(name));
        EXPECT_TRUE(child) << name;
        return child;
    }
    static void ClickButton(QWidget* w, const char* name) {
        Click(Child<QAbstractButton>(w, name));
    }
    static void ClickEntry(QWidget* w, int row) {
        auto* list = Child<QListWidget>(w, "List1");
        list->scrollToItem(list->item(row));
        const QRect r = list->visualItemRect(list->item(row));
        ClickAt(list, list->viewport()->mapTo(list, r.center()));
    }
    static void SetDates(QWidget* w, QDate from, QDate to) {
        Child<QDateEdit>(w, "DTPicker1(0)")->setDate(from);
        Child<QDateEdit>(w, "DTPicker1(1)")->setDate(to);
    }
    // Department 01, March 2024, fee items extracted.
    void Extract(PagedReportWindow* w) {
        ClickEntry(w, 0);
        SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31));
        ClickButton(w, "Command3");
    }
    static void Type(QWidget* w, const QString& text) {
        QTest::keyClicks(w, text);
        QTest::keyClick(w, Qt::Key_Return);
        Settle();
    }

    WatchingDialogs dialogs;
    TestDatabase db;
    std::unique_ptr<DatabaseSession> session;
    ReportDefinition definition;
    WatchedStatement::Hooks hooks;
    std::unique_ptr<MainWindow> main;
};

}  // namespace

TEST_F(InvoiceWindowTest, OpensFromTheMenuAtItsDesignSize) {
    PagedReportWindow* w = OpenFromMenu();
    ASSERT_TRUE(w);
    QMdiSubWindow* frame = Frame(w);
    ASSERT_TRUE(frame);
    EXPECT_FALSE(frame->isMaximized());
    EXPECT_TRUE(w->isVisible());
    // 18120 by 10950 twips at 15 twips a pixel.
    EXPECT_NEAR(w->width(), 1208, 1);
    EXPECT_NEAR(w->height(), 730, 1);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);
    // Chosen again: raised, not reopened.
    ChooseFromMenu(main->menuBar(), QStringLiteral("统计报表"), kEntry);
    EXPECT_EQ(main->OpenWindow(kEntry), w);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);
    EXPECT_EQ(main->Area()->activeSubWindow(), frame);
}

TEST_F(InvoiceWindowTest, OpensClippedToASmallArea) {
    main->resize(900, 600);
    Settle();
    PagedReportWindow* w = OpenFromMenu();
    const QSize area = main->Area()->viewport()->size();
    EXPECT_LE(Frame(w)->width(), area.width());
    EXPECT_LE(Frame(w)->height(), area.height());
    EXPECT_GT(w->height(), 300);
}

TEST_F(InvoiceWindowTest, Command1ClosesTheFrameAndTheMenuReopensAFreshWindow) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    ASSERT_TRUE(Child<QPushButton>(w, "Command6")->isEnabled());
    ASSERT_EQ(w->TitleText(), "【云栖苑】增值税开票明细表");

    ClickButton(w, "Command1");
    EXPECT_EQ(main->OpenWindow(kEntry), nullptr);
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());

    w = OpenFromMenu();
    ASSERT_TRUE(w);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);
    EXPECT_EQ(w->TitleText(), "增值税开票明细表");
    EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
    EXPECT_TRUE(w->SelectedEntry().isEmpty());
    EXPECT_EQ(w->Grid2().Rows(), 1);
    EXPECT_TRUE(w->Conditions().DeptCode.isEmpty());
}

TEST_F(InvoiceWindowTest, AClosedWidgetTakesItsFrameAlong) {
    PagedReportWindow* w = OpenFromMenu();
    w->close();
    Settle();
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());
}

TEST_F(InvoiceWindowTest, RatioEditorOpensOnDataCellsOnlyAlsoScrolledSideways) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    auto* grid2 = Child<FlexGridView>(w, "MSFlexGrid2");
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    ASSERT_EQ(w->Grid2().Rows(), 2);

    // The headings of the shares are no cells to edit.
    for (int col : {2, 3}) {
        ClickCell(grid2, 0, col);
        EXPECT_FALSE(editor->isVisible()) << col;
    }
    EXPECT_EQ(w->Grid2().TextMatrix(0, 2), "开发商");
    EXPECT_EQ(w->Grid2().TextMatrix(0, 3), "物业公司");

    // The widths of the design format string are wider than the grid.
    ASSERT_TRUE(grid2->horizontalScrollBar()->isVisible());
    ClickCell(grid2, 1, 2);
    ASSERT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->text(), "70");
    EXPECT_EQ(QRect(grid2->mapTo(editor->parentWidget(), grid2->CellRect(1, 2).topLeft()),
                    grid2->CellRect(1, 2).size()),
              editor->geometry());

    ClickCell(grid2, 1, 1);  // elsewhere: closed, nothing written
    EXPECT_FALSE(editor->isVisible());

    ScrollByClicks(grid2->horizontalScrollBar(), 3);
    ASSERT_GT(grid2->horizontalScrollBar()->value(), 0);
    ClickCell(grid2, 1, 3);
    ASSERT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->text(), "30");
    const QRect cell = grid2->CellRect(1, 3);
    EXPECT_EQ(QRect(grid2->mapTo(editor->parentWidget(), cell.topLeft()), cell.size()),
              editor->geometry());
    // The heading above it scrolled along.
    EXPECT_EQ(grid2->CellRect(0, 3).left(), cell.left());
}

TEST_F(InvoiceWindowTest, SharesTypedWithEnterAndTheSumRule) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    auto* grid2 = Child<FlexGridView>(w, "MSFlexGrid2");
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    ClickCell(grid2, 1, 2);
    Type(editor, "60");
    EXPECT_EQ(w->Grid2().Col(), 3);  // Enter goes on to the property company's share
    ASSERT_TRUE(editor->isVisible());
    Type(editor, "30");
    EXPECT_EQ(dialogs.texts(), QStringList{"分成比例总和必须等于100,请重新设置分成比例!"});
    EXPECT_EQ(w->Grid2().Col(), 2);
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->selectedText(), "60");
    Type(editor, "70");
    Type(editor, "30");
    EXPECT_FALSE(editor->isVisible());
    EXPECT_EQ(dialogs.texts().size(), 1);
    EXPECT_EQ(grid2->item(1, 2)->text(), "70");
}

TEST_F(InvoiceWindowTest, ATallerWindowShowsTheEndOfTheList) {
    PagedReportWindow* w = OpenFromMenu();
    QMdiSubWindow* frame = Frame(w);
    frame->resize(frame->width(), frame->height() + 150);
    Settle();
    ASSERT_GT(w->height(), 850);
    auto* list = Child<QListWidget>(w, "List1");
    auto* pane = Child<QWidget>(w, "Picture2");
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_End);
    Settle();
    const QListWidgetItem* last = list->item(list->count() - 1);
    EXPECT_TRUE(last->isSelected());
    const QRect item = list->visualItemRect(last);
    const QRect shown(list->viewport()->mapTo(w, item.topLeft()), item.size());
    const QRect paneShown(pane->mapTo(w, QPoint()), pane->size());
    EXPECT_TRUE(paneShown.contains(shown)) << shown.y() << " " << paneShown.bottom();
    EXPECT_TRUE(w->rect().contains(paneShown));
    // The list and its scroll bar end inside the pane, above the status bar.
    EXPECT_LE(list->geometry().bottom(), pane->height() - 1);
    EXPECT_LE(paneShown.bottom(), Child<QWidget>(w, "StatusBar1")->y());
    EXPECT_EQ(w->TitleText(), "【分部31】增值税开票明细表");
}

TEST_F(InvoiceWindowTest, ArrowKeysCarryTheTitleAndCommand3ReadsWhatItShows) {
    PagedReportWindow* w = OpenFromMenu();
    auto* list = Child<QListWidget>(w, "List1");
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    Settle();
    EXPECT_EQ(w->TitleText(), "【云栖苑】增值税开票明细表");
    QTest::keyClick(list, Qt::Key_Down);
    Settle();
    EXPECT_EQ(w->TitleText(), "【分部02】增值税开票明细表");
    SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31));
    ClickButton(w, "Command3");
    EXPECT_EQ(w->Conditions().DeptCode, "02");
    EXPECT_EQ(dialogs.texts().last(), "没有满足条件的开票数据,请重新设置条件!");
    QTest::keyClick(list, Qt::Key_Up);
    Settle();
    EXPECT_EQ(w->TitleText(), "【云栖苑】增值税开票明细表");
}

TEST_F(InvoiceWindowTest, HeaderRowsStayAtTheTopWhileTheBodyScrolls) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    ClickButton(w, "Command6");
    auto* grid1 = Child<FlexGridView>(w, "MSFlexGrid1");
    ASSERT_GT(w->Grid1().Rows(), 20);
    QScrollBar* bar = grid1->verticalScrollBar();
    ASSERT_TRUE(bar->isVisible());  // a page is taller than the grid
    const int headerHeight = grid1->CellRect(2, 0).top() - grid1->CellRect(0, 0).top();
    const QRect headerStrip(0, 0, grid1->viewport()->width(), headerHeight + 1);
    const QImage before = grid1->grab(headerStrip).toImage();
    const QPoint rowZero = grid1->CellRect(0, 1).center(), rowOne = grid1->CellRect(1, 2).center();
    const QPoint rowTwo = grid1->CellRect(2, 0).center();

    ScrollByClicks(bar, 2);
    ASSERT_GT(bar->value(), 0);
    // Rows 0 and 1 are drawn where they were, the body under them moved.
    EXPECT_EQ(grid1->CellAt(rowZero), std::make_pair(0, 1));
    EXPECT_EQ(grid1->CellAt(rowOne), std::make_pair(1, 2));
    EXPECT_EQ(grid1->grab(headerStrip).toImage(), before);
    EXPECT_GT(grid1->CellAt(rowTwo).first, 2);
    // The merges of the header are kept: 序 over both rows, the band over its columns.
    EXPECT_EQ(grid1->FixedRowsView()->rowSpan(0, 0), 2);
    EXPECT_EQ(grid1->CellAt(grid1->CellRect(1, 1).center() - QPoint(grid1->columnWidth(0), 0)),
              std::make_pair(0, 0));
    EXPECT_EQ(grid1->FixedRowsView()->columnSpan(0, 2), 3);
    EXPECT_EQ(grid1->CellAt(grid1->CellRect(1, 4).center() -
                            QPoint(0, grid1->FixedRowsView()->rowHeight(0))),
              std::make_pair(0, 2));
}

TEST_F(InvoiceWindowTest, NumbersRightTextLeftAtTheGeneralAlignment) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    ClickButton(w, "Command6");
    auto* grid1 = Child<FlexGridView>(w, "MSFlexGrid1");
    const FlexGrid& g = w->Grid1();
    const int n = w->Statement().FeeColumnCount();
    const int money = 6, total = 6 + n, method = 7 + n;
    ASSERT_EQ(g.ColAlignment(money), FlexGrid::AlignGeneral);
    ASSERT_EQ(g.ColAlignment(method), FlexGrid::AlignGeneral);
    EXPECT_EQ(g.TextMatrix(2, money), "100.00");
    EXPECT_EQ(grid1->item(2, money)->textAlignment(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(grid1->item(2, total)->textAlignment(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(g.TextMatrix(2, method), "现金");
    EXPECT_EQ(grid1->item(2, method)->textAlignment(), int(Qt::AlignLeft | Qt::AlignVCenter));
}

TEST_F(InvoiceWindowTest, TextsOfTheLabelsButtonsAndStatusPanels) {
    AppSession().SessionOperatorText = "张三";
    AppSession().SessionDepartmentText = "财务部";
    AppSession().SessionPostText = "出纳";
    PagedReportWindow* w = OpenFromMenu();
    AppSession().SessionOperatorText.clear();
    AppSession().SessionDepartmentText.clear();
    AppSession().SessionPostText.clear();
    EXPECT_EQ(w->windowTitle(), "增值税开票明细表");
    const QString today = QDate::currentDate().toString("yyyy-MM-dd");
    struct Case {
        const char* name;
        QString text;
    };
    const Case cases[] = {
        {"Label1(1)", "增值税开票统计条件"},
        {"Label1(0)", "增值税开票明细表"},
        {"Label1(10)", "开票日期范围"},
        {"Label1(13)", "至"},
        {"Label1(3)", "设置停车费分账比例"},
        {"Label1(11)", "选择部门"},
        {"Label19", "第 00 页 共 00 页"},
        {"Label21", "转到"},
        {"Label22", "页"},
        {"Label2", "正在导出数据，请稍等......"},
        {"Label3", ""},
        {"Command3", "提取收费项目"},
        {"Command6", "开始统计"},
        {"Command2", "导出Excel"},
        {"Command1", "退出"},
        {"Image2(0)", "首页"},
        {"Image2(1)", "上一页"},
        {"Image2(2)", "下一页"},
        {"Image2(3)", "尾页"},
        {"Panel1", "操作员"},
        {"Panel2", "张三"},
        {"Panel3", "部门"},
        {"Panel4", "财务部"},
        {"Panel5", "岗位"},
        {"Panel6", "出纳"},
        {"Panel7", "云栖账房"},
        {"Panel8", today},
        {"Panel9", "hh:mm:ss"},
    };
    for (const Case& c : cases) {
        QWidget* control = Child(w, c.name);
        if (!control) continue;
        QString text;
        if (auto* label = qobject_cast<QLabel*>(control)) text = label->text();
        if (auto* image = qobject_cast<QToolButton*>(control))
            text = image->toolTip();
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            text = button->text();
        if (c.text == "hh:mm:ss")
            EXPECT_TRUE(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d$").match(text).hasMatch())
                << text.toStdString();
        else
            EXPECT_EQ(text, c.text) << c.name;
    }
    // Nine panels, the seventh the wide one.
    const auto panels =
        Child<QWidget>(w, "StatusBar1")->findChildren<QLabel*>(QRegularExpression("^Panel\\d$"));
    EXPECT_EQ(panels.size(), 9);
}

TEST_F(InvoiceWindowTest, TheRunEndsWithPageOrMessageBeforeThePanelGoes) {
    PagedReportWindow* w = OpenFromMenu();
    QWidget* panel = Child(w, "Picture5");
    std::vector<std::pair<bool, bool>> seen;  // the busy panel shown, the hourglass on
    auto look = [&] {
        seen.emplace_back(panel->isVisible(), QApplication::overrideCursor() != nullptr);
    };
    hooks.onShowPage = look;
    dialogs.onMessage = look;
    Extract(w);
    ClickButton(w, "Command6");
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0], std::make_pair(true, true));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    // No rows in May: the message, then the panel goes.
    ClickButton(w, "Command3");
    SetDates(w, QDate(2024, 5, 1), QDate(2024, 5, 31));
    seen.clear();
    ClickButton(w, "Command6");
    EXPECT_EQ(dialogs.texts().last(), "无满足统计条件的数据，请重新设置统计条件！");
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0], std::make_pair(true, true));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(w->Grid1().Rows(), 2);
}

TEST_F(InvoiceWindowTest, Command6DisablesItselfBeforeTheHeaderUnlessTheReportSaysFirst) {
    std::vector<bool> enabledAtHeader;
    hooks.onBuildHeader = [&] {
        if (auto* w = main->OpenWindow(kEntry))
            enabledAtHeader.push_back(w->findChild<QPushButton*>("Command6")->isEnabled());
    };
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    ClickButton(w, "Command6");
    ASSERT_EQ(enabledAtHeader, std::vector<bool>{false});  // the invoice report: disabled first
    ClickButton(w, "Command1");

    definition.headerBeforeDisable = true;  // as the parking report asks
    enabledAtHeader.clear();
    w = OpenFromMenu();
    Extract(w);
    ClickButton(w, "Command6");
    EXPECT_EQ(enabledAtHeader, std::vector<bool>{true});
    EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
}

TEST_F(InvoiceWindowTest, PagerClickBeforeAnyRunIsARuntimeError) {
    PagedReportWindow* w = OpenFromMenu();
    auto* text6 = Child<QLineEdit>(w, "Text6");
    Type(text6, "2");  // Text6 fails safe: no pages yet, the box is emptied
    EXPECT_TRUE(text6->text().isEmpty());
    EXPECT_TRUE(RecordedErrors().empty());
    ClickButton(w, "Image2(2)");
    EXPECT_EQ(RecordedErrors(), std::vector<long>{9});  // subscript out of range
    EXPECT_EQ(Child<QLabel>(w, "Label19")->text(), "第 00 页 共 00 页");
}

TEST_F(InvoiceWindowTest, RoadOfOneStatement) {
    PagedReportWindow* w = OpenFromMenu();
    ASSERT_TRUE(w);
    auto* command6 = Child<QPushButton>(w, "Command6");
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts(), QStringList{"请先选择统计部门!"});
    ClickEntry(w, 0);
    SetDates(w, QDate(2024, 3, 31), QDate(2024, 3, 1));
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts().last(), "截至日期不能小于开始日期!");
    EXPECT_EQ(w->focusWidget(), Child<QDateEdit>(w, "DTPicker1(1)"));
    dialogs.messages.clear();
    ClickButton(w, "Command2");  // the header alone: nothing to export, no message
    EXPECT_TRUE(dialogs.saveDialogDefaults.isEmpty());
    EXPECT_TRUE(dialogs.messages.empty());

    Extract(w);
    EXPECT_TRUE(command6->isEnabled());
    ClickCell(Child<FlexGridView>(w, "MSFlexGrid2"), 1, 2);
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    Type(editor, "60");
    Type(editor, "40");
    EXPECT_TRUE(dialogs.messages.empty());

    ClickButton(w, "Command6");
    EXPECT_FALSE(command6->isEnabled());
    EXPECT_EQ(w->Grid1().TextMatrix(1, 8), "开发商60%");
    const int pageSize = w->PageSize();
    ASSERT_GT(pageSize, 0);
    const int rows = 45 + 2;
    const int pages = (rows + pageSize - 1) / pageSize;
    EXPECT_EQ(w->Grid1().Rows(), 2 + std::min(pageSize, rows));
    EXPECT_EQ(w->Grid1().TextMatrix(2, 0), "1");
    auto* label19 = Child<QLabel>(w, "Label19");
    EXPECT_EQ(label19->text(), QString("第 01 页 共 %1 页").arg(pages, 2, 10, QChar('0')));

    ClickButton(w, "Image2(3)");
    EXPECT_EQ(w->CurrentPage(), pages);
    EXPECT_EQ(w->Grid1().TextMatrix(w->Grid1().Rows() - 1, 1), "其中");
    ClickButton(w, "Image2(2)");
    EXPECT_EQ(w->CurrentPage(), pages);
    ClickButton(w, "Image2(0)");
    EXPECT_EQ(w->CurrentPage(), 1);
    ClickButton(w, "Image2(1)");
    EXPECT_EQ(w->CurrentPage(), 1);

    auto* text6 = Child<QLineEdit>(w, "Text6");
    Type(text6, "abc");
    EXPECT_TRUE(text6->text().isEmpty());
    EXPECT_EQ(w->CurrentPage(), 1);
    if (pages >= 2) {
        Type(text6, "1.5");  // ties to even
        EXPECT_EQ(w->CurrentPage(), 2);
        EXPECT_EQ(text6->text(), "1.5");
    }

    QTemporaryDir dir;
    dialogs.saveAnswers = {std::nullopt, dir.filePath("本月.xlsx")};
    ClickButton(w, "Command2");
    EXPECT_EQ(dialogs.texts().last(), "您取消了导出操作！");
    EXPECT_TRUE(Child<QPushButton>(w, "Command2")->isVisible());
    ClickButton(w, "Command2");
    EXPECT_EQ(dialogs.saveDialogDefaults.last(), "【云栖苑】增值税开票明细表_20240301-20240331");
    EXPECT_EQ(w->LastExport(), dir.filePath("本月.xlsx"));
    EXPECT_TRUE(QFile::exists(dir.filePath("本月.xlsx")));
    EXPECT_EQ(dialogs.texts().last(), "增值税开票明细表导出成功！");
    EXPECT_TRUE(Child<QPushButton>(w, "Command1")->isVisible());
    EXPECT_FALSE(Child<QWidget>(w, "ProgressBar1")->isVisible());
}

TEST_F(InvoiceWindowTest, ResizeKeepsMarginsAndThePage) {
    PagedReportWindow* w = OpenFromMenu();
    Extract(w);
    ClickButton(w, "Command6");
    const QString page = Child<QLabel>(w, "Label19")->text();
    const int rowsShown = w->Grid1().Rows();
    const int pageSize = w->PageSize();
    QMdiSubWindow* frame = Frame(w);
    frame->resize(frame->width() - 100, frame->height() + 120);
    Settle();
    auto* strip = Child<QWidget>(w, "Picture4");
    auto* c1 = Child<QPushButton>(w, "Command1");
    auto* c2 = Child<QPushButton>(w, "Command2");
    EXPECT_NEAR(strip->width() - c1->geometry().right() - 1, c2->x(), 1);
    EXPECT_EQ(Child<QLabel>(w, "Label19")->text(), page);
    EXPECT_EQ(w->Grid1().Rows(), rowsShown);
    EXPECT_GT(w->PageSize(), pageSize);  // the next page is longer
    // The title stays centred over the result area.
    auto* title = Child<QLabel>(w, "Label1(0)");
    auto* area = Child<QWidget>(w, "Picture3");
    EXPECT_NEAR(title->x() + title->width() / 2.0, area->x() + area->width() / 2.0, 1);
}

TEST_F(InvoiceWindowTest, PrivilegesAndTheCloseQuestion) {
    AppSession().SessionConnection = db.Session();
    QString memo = "报表";
    main->权限设置(memo);
    AppSession().SessionConnection.reset();
    for (const char* name :
         {"统计报表", "停车费明细表", "增值税开票明细表", "增值税预开明细表", "开票票据核对表"})
        EXPECT_FALSE(main->findChild<QAction*>(QString::fromUtf8(name))->isEnabled()) << name;
    EXPECT_TRUE(main->findChild<QAction*>("关于软件")->isEnabled());

    main->Choose(kEntry);
    dialogs.answers = {MsgResult::No};
    EXPECT_FALSE(main->close());
    EXPECT_EQ(dialogs.texts().last(), "确认要退出系统吗？");
    EXPECT_EQ(dialogs.messages.back().title, "云栖报表台");
    EXPECT_TRUE(main->isVisible());
    Settle();
    EXPECT_EQ(main->OpenWindow(kEntry), nullptr);
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());
}

// The window on a demo ledger, as the README shows it.
TEST(InvoiceWindowDemoTest, ScreenshotOfTheWindowOpenedFromTheMenu) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    QTemporaryDir dir;
    const QString file = dir.filePath("demo.sqlite");
    WriteDemoDatabase(file, 3000, 7);
    auto session = DatabaseSession::OpenEmbedded(file);
    {
        MainWindow main(std::map<QString, MainWindow::WindowFactory>{
            {kEntry, [&] { return NewReportWindow(*FindReport("invoice"), *session); }}});
        main.resize(1280, 900);
        main.show();
        Settle();
        ChooseFromMenu(main.menuBar(), QStringLiteral("统计报表"), kEntry);
        auto* w = qobject_cast<PagedReportWindow*>(main.OpenWindow(kEntry));
        ASSERT_TRUE(w);
        auto* list = w->findChild<QListWidget*>("List1");
        const auto found = list->findItems("01 ", Qt::MatchStartsWith);
        ASSERT_FALSE(found.isEmpty());
        ClickAt(list, list->viewport()->mapTo(list, list->visualItemRect(found[0]).center()));
        w->findChild<QDateEdit*>("DTPicker1(0)")->setDate(QDate(2024, 1, 1));
        w->findChild<QDateEdit*>("DTPicker1(1)")->setDate(QDate(2024, 12, 31));
        Click(w->findChild<QPushButton*>("Command3"));
        Click(w->findChild<QPushButton*>("Command6"));
        EXPECT_GT(w->Grid1().Rows(), 10);
        EXPECT_TRUE(dialogs.messages.empty());
        EXPECT_FALSE(qobject_cast<QMdiSubWindow*>(w->parentWidget())->isMaximized());
        if (const QByteArray shot = qgetenv("YUNQI_SCREENSHOT"); !shot.isEmpty())
            EXPECT_TRUE(main.grab().save(QString::fromUtf8(shot)));
    }
    SetAppDialogs(nullptr);
}
