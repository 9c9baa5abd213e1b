// The report windows as an operator meets them: opened from the menu of the
// main window, driven by mouse and keys in a real event loop.
#include "frame/widgets/ReportWindow.h"

#include <gtest/gtest.h>

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <thread>

#include "cli/DemoDatabase.h"
#include "cli/GridCsv.h"
#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/SessionState.h"
#include "frame/Pager.h"
#include "frame/widgets/EventDriver.h"
#include "frame/widgets/MonthlyReportWindow.h"
#include "reports/invoice/InvoiceStatement.h"
#include "support/GoldenText.h"
#include "support/TestDatabase.h"
#include "support/ZipParts.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

const QString kInvoice = QStringLiteral("增值税开票明细表");
const QString kReconciliation = QStringLiteral("开票票据核对表");

// The invoice statement telling the test what the window shows while it works.
class WatchedStatement : public InvoiceStatement {
  public:
    struct Hooks {
        std::function<void()> onBuildHeader, onShowPage;
    };
    const Hooks& hooks_;
    WatchedStatement(DatabaseSession& s, const Hooks& hooks) : InvoiceStatement(s), hooks_(hooks) {}
    void BuildGridHeader(FlexGrid& g1, const FlexGrid& g2) override {
        if (hooks_.onBuildHeader) hooks_.onBuildHeader();
        InvoiceStatement::BuildGridHeader(g1, g2);
    }
    void ShowPage(FlexGrid& g, int page, int size, const TextMeasure& m) const override {
        InvoiceStatement::ShowPage(g, page, size, m);
        if (hooks_.onShowPage) hooks_.onShowPage();
    }
};

void ExpectSameAsFile(const QByteArray& shown, const QString& file) {
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << file.toStdString();
    const QString difference = FirstDifference(shown, f.readAll());
    EXPECT_TRUE(difference.isEmpty()) << file.toStdString() << ": " << difference.toStdString();
}

// Message boxes recorded with the state of the window at the moment.
class WatchingDialogs : public RecordingDialogs {
  public:
    std::function<void()> onMessage, onYield;
    MsgResult MsgBox(const QString& text, const QString& title, MsgIcon icon,
                     MsgButtons buttons) override {
        if (onMessage) onMessage();
        return RecordingDialogs::MsgBox(text, title, icon, buttons);
    }
    void Yield() override {
        if (onYield) onYield();
        RecordingDialogs::Yield();
    }
};

// Every text a window draws for the operator, one "name<TAB>text" a line, each
// once in the order first seen: the title, labels, button texts, a pager
// image's tool tip, group captions, and the grids' fixed rows as the window
// loads them (later ones are the data's, which statement.csv holds). The
// status bar's clock and what the boxes and lists hold are not the window's.
class ShownTexts {
  public:
    void Take(QWidget* w, bool gridHeaders = false) {
        Add(w, w->windowTitle());
        for (QWidget* c : w->findChildren<QWidget*>()) {
            if (!c->isVisibleTo(w)) continue;
            if (auto* label = qobject_cast<QLabel*>(c)) {
                const QString name = label->objectName();
                if (name != "Panel8" && name != "Panel9") Add(label, label->text());
            } else if (auto* button = qobject_cast<QAbstractButton*>(c)) {
                Add(button, button->text());
                Add(button, button->toolTip(), ".toolTip");
            } else if (auto* box = qobject_cast<QGroupBox*>(c)) {
                Add(box, box->title());
            } else if (auto* grid = qobject_cast<FlexGridView*>(c); grid && gridHeaders) {
                const QAbstractItemModel* fixed = grid->FixedRowsView()->model();
                for (int row = 0; row < fixed->rowCount(); ++row) {
                    QStringList cells;
                    for (int col = 0; col < fixed->columnCount(); ++col)
                        if (const QString text = fixed->index(row, col).data().toString();
                            !text.isEmpty())
                            cells << text;
                    Add(grid, cells.join(" | "));
                }
            }
        }
    }
    void TakeMessages(const RecordingDialogs& dialogs) {
        for (const auto& m : dialogs.messages) Line("message\t" + m.title + '\t' + m.text);
    }
    QByteArray Text() const {
        return lines_.isEmpty() ? QByteArray() : (lines_.join('\n') + '\n').toUtf8();
    }

  private:
    void Add(const QWidget* c, const QString& text, const char* what = "") {
        if (!text.trimmed().isEmpty()) Line(c->objectName() + what + '\t' + text);
    }
    void Line(QString line) {
        line.replace('\n', QLatin1String("\\n"));  // a text of two lines stays on one
        if (!lines_.contains(line)) lines_ << line;
    }
    QStringList lines_;
};

// Dialogs and run-time errors recorded; the main window made by each test.
class WindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        errors.clear();
        SetRuntimeErrorHandler([](const RuntimeError& e) { errors.push_back(e.number()); });
    }
    void TearDown() override {
        main.reset();
        SetRuntimeErrorHandler(nullptr);
        SetAppDialogs(nullptr);
    }
    static auto* Frame(QWidget* w) { return qobject_cast<QMdiSubWindow*>(w->parentWidget()); }
    // The main window of every report on the ledger, and the window of an entry.
    template <typename T = ReportWindow>
    T* OpenOnLedger(const QString& entry) {
        session = db.Session();
        main = MainWindowOfAllReports(*session);
        return OpenFromMenu<T>(*main, entry);
    }
    static void ClickEntry(QWidget* w, int row) {
        auto* list = Child<QListWidget>(w, "List1");
        QListWidgetItem* item = list->item(row);
        list->scrollToItem(item);
        ClickAt(list, list->viewport()->mapTo(list, list->visualItemRect(item).center()));
    }
    static void SetDates(QWidget* w, QDate from, QDate to) {
        Child<QDateEdit>(w, "DTPicker1(0)")->setDate(from);
        Child<QDateEdit>(w, "DTPicker1(1)")->setDate(to);
    }
    static void Months(QWidget* w, const char* year, const char* from, const char* to) {
        Child<QComboBox>(w, "Combo1")->setCurrentText(year);
        Child<QComboBox>(w, "Combo2")->setCurrentText(from);
        Child<QComboBox>(w, "Combo3")->setCurrentText(to);
    }

    inline static std::vector<long> errors;
    WatchingDialogs dialogs;
    TestDatabase db;
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<MainWindow> main;
};

// ---- Every report on the golden ledger ------------------------------------------

class ReportWindows : public WindowTest,
                      public ::testing::WithParamInterface<const ReportDefinition*> {};

// A window shows what the companion writes for the same conditions (its CSV
// is the grid as one page holds it) and exports the same workbook. What it
// writes for the operator on the way is in window-texts.txt.
TEST_P(ReportWindows, ShowAndExportWhatTheCompanionWrites) {
    const ReportDefinition& report = *GetParam();
    FillGoldenLedger(db);
    ReportWindow* w = OpenOnLedger(report.menuEntry);
    ASSERT_TRUE(w);
    EXPECT_EQ(w->objectName(), report.windowName);
    EXPECT_FALSE(Frame(w)->isMaximized());
    ShownTexts shown;
    shown.Take(w, true);
    // The busy panel as the window's thread shows it.
    dialogs.onYield = [&] {
        if (QThread::currentThread() == w->thread()) shown.Take(w);
    };
    const bool paged = report.conditions == ConditionsKind::DateWindow;
    // The conditions first: the reconciliation's title takes the year at the click.
    paged ? SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31)) : Months(w, "2024", "03", "03");
    ClickEntry(w, 0);
    // A click below the last department keeps it selected.
    auto* list = Child<QListWidget>(w, "List1");
    const QPoint below = list->viewport()->rect().bottomLeft() + QPoint(20, -5);
    ClickAt(list, list->viewport()->mapTo(list, below));
    EXPECT_EQ(list->selectedItems().size(), 1);
    ClickButton(w, "Command3");
    if (paged) {
        // 07's shares typed in, as the companion's --ratio gives them.
        ClickCell(Child<FlexGridView>(w, "MSFlexGrid2"), 1, 2);
        auto* editor = Child<QLineEdit>(w, "txtGRD");
        Type(editor, "66.7");
        Type(editor, "33.3");
        ClickButton(w, "Command6");
        EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
    }
    EXPECT_TRUE(dialogs.messages.empty()) << dialogs.texts().join('|').toStdString();
    const QString golden =
        QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/") + report.command + '/';
    ExpectSameAsFile(GridCsv(w->Grid1()).toUtf8(), golden + "statement.csv");
    shown.Take(w);

    QTemporaryDir dir;
    dialogs.saveAnswers = {dir.filePath("out.xlsx")};
    // The busy pointer stands while the rows go out and is gone at the message.
    // The bar reads full only once the file is there.
    bool busyWhileWriting = false, busyAtMessage = true, full = false, fullBeforeTheFile = false;
    auto* bar = Child<QProgressBar>(w, "ProgressBar1");
    QObject::connect(bar, &QProgressBar::valueChanged, w, [&](int value) {
        busyWhileWriting = QApplication::overrideCursor() != nullptr;
        shown.Take(w);
        if (value < bar->maximum()) return;
        full = true;
        fullBeforeTheFile = fullBeforeTheFile || !QFile::exists(dir.filePath("out.xlsx"));
    });
    // The bar stands full at the message: drawn whole, nothing over it.
    QImage barAlone, barInWindow;
    dialogs.onMessage = [&] {
        busyAtMessage = QApplication::overrideCursor() != nullptr;
        shown.Take(w);
        const auto pixels = [](const QPixmap& p) {
            return p.toImage().convertToFormat(QImage::Format_RGB32);
        };
        barAlone = pixels(bar->grab());
        barInWindow = pixels(w->grab(QRect(bar->mapTo(w, QPoint()), bar->size())));
    };
    ClickButton(w, "Command2");
    dialogs.onYield = nullptr;
    shown.Take(w);
    shown.TakeMessages(dialogs);
    ExpectGolden(shown.Text(), golden + "window-texts.txt");
    EXPECT_FALSE(barAlone.isNull());
    EXPECT_TRUE(barInWindow == barAlone) << "something is drawn over the progress bar";
    EXPECT_TRUE(busyWhileWriting);
    EXPECT_FALSE(busyAtMessage);
    EXPECT_TRUE(full);
    EXPECT_FALSE(fullBeforeTheFile);
    EXPECT_EQ(dialogs.saveDialogDefaults.value(0),
              w->TitleText() + (paged ? QStringLiteral("_20240301-20240331") : QString()));
    EXPECT_EQ(w->LastExport(), dir.filePath("out.xlsx"));
    EXPECT_EQ(dialogs.texts().value(0), report.texts.exportedText);
    EXPECT_TRUE(Child(w, "Command1")->isVisible());
    EXPECT_FALSE(Child(w, "ProgressBar1")->isVisible());
    const auto parts = ReadZipParts(dir.filePath("out.xlsx"));
    ASSERT_TRUE(parts.count("xl/worksheets/sheet1.xml"));
    ExpectSameAsFile(PrettyXml(parts.at("xl/worksheets/sheet1.xml")), golden + "sheet1.xml");
    EXPECT_TRUE(errors.empty());
}

// Every button and picker takes a mouse click at its centre, at the design
// size and maximised: nothing drawn over it takes the click instead.
TEST_P(ReportWindows, EveryControlTakesAClickWhereItIsDrawn) {
    FillGoldenLedger(db);
    ReportWindow* w = OpenOnLedger(GetParam()->menuEntry);
    ASSERT_TRUE(w);
    for (const bool maximised : {false, true}) {
        if (maximised) Frame(w)->showMaximized();
        Settle();
        int seen = 0;
        for (QWidget* control : w->findChildren<QWidget*>()) {
            if (!control->isVisibleTo(w) ||
                !(qobject_cast<QAbstractButton*>(control) ||
                  qobject_cast<QAbstractSpinBox*>(control) || qobject_cast<QComboBox*>(control)))
                continue;
            ++seen;
            const QWidget* hit = w->childAt(control->mapTo(w, control->rect().center()));
            EXPECT_TRUE(hit == control || control->isAncestorOf(hit))
                << control->objectName().toStdString() << (maximised ? " maximised" : "")
                << " is covered by " << (hit ? hit->objectName().toStdString() : "nothing");
        }
        EXPECT_GE(seen, 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Golden, ReportWindows, ::testing::ValuesIn(AllReports()),
                         [](const auto& info) { return info.param->command.toStdString(); });

// ---- The reconciliation's window -------------------------------------------------

class MonthlyWindowTest : public WindowTest {};

TEST_F(MonthlyWindowTest, ADepartmentMonthsInOrderTicketsFirstAndTheBoxAtTheBottom) {
    FillGoldenLedger(db);
    auto* w = OpenOnLedger<MonthlyReportWindow>(kReconciliation);
    ASSERT_TRUE(w);
    EXPECT_EQ(Child<QComboBox>(w, "Combo1")->currentText(),
              QString::number(QDate::currentDate().year()));
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts(), QStringList{"请先选择统计部门!"});
    Months(w, "2024", "12", "01");
    ClickEntry(w, 0);
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts().last(), "截至月份不能小于开始月份,请重新选择!");
    Months(w, "2023", "01", "12");
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts().last(), "没有满足条件的开票数据,请重新设置条件!");
    EXPECT_EQ(dialogs.texts().size(), 3);
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    EXPECT_EQ(w->Grid1().Rows(), 2);
    // The title takes the year at the click and keeps it.
    EXPECT_EQ(w->TitleText(), "2024年度【云栖苑】票据核对表");
    // The pane keeps its box at the bottom as the frame grows.
    for (int grow : {0, 150}) {
        w->parentWidget()->resize(1000 + grow, 700 + grow);
        Settle();
        auto *strip = Child(w, "Picture4"), *box = Child(w, "Picture6"), *list = Child(w, "List1");
        // In twips: Picture6.Top = Picture4.Top - Picture6.Height + 30, and the
        // list reaches 60 below Picture6's top.
        EXPECT_NEAR(box->y(), strip->y() - box->height() + 2, 1);
        EXPECT_NEAR(list->y() + list->height(), box->y() + 4, 1);
        EXPECT_NEAR(strip->width() - Child(w, "Command1")->geometry().right() - 1,
                    Child(w, "Command2")->x(), 1);
        EXPECT_TRUE(box->isVisible());
        EXPECT_TRUE(Child(w, "Command3")->isVisible());
    }
}

TEST_F(MonthlyWindowTest, UntrappedFailureStopsTheRun) {
    FillGoldenLedger(db);
    // Without an ordinary type the month's statement has an empty "In ()".
    db.Exec("DELETE FROM 票据类型 WHERE 票据类型代号 = '02'");
    auto* w = OpenOnLedger<MonthlyReportWindow>(kReconciliation);
    ASSERT_TRUE(w);
    Months(w, "2024", "03", "03");
    ClickEntry(w, 0);
    ClickButton(w, "Command3");
    EXPECT_EQ(errors, std::vector<long>{102});
    EXPECT_EQ(w->Grid1().Rows(), 2);
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// ---- The paged window: the invoice statement ------------------------------------

// A ledger of 45 tickets of department 01 in March 2024 with one parking
// item, and 30 more departments, so that the list is longer than its pane.
class InvoiceWindowTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
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
            db.Add({.no = QString("%1").arg(i, 5, 10, QChar('0')),
                    .issued = "2024-03-10",
                    .amount = 100,
                    .item = i % 2 ? "01" : "07",
                    .dept = "01"});
        db.Exec("COMMIT");
        session = db.Session();
        definition = *FindReport("invoice");
        definition.make = [this](DatabaseSession& s) {
            return std::make_unique<WatchedStatement>(s, hooks);
        };
        main =
            ShownMainWindow({{kInvoice, [this] { return NewReportWindow(definition, *session); }}});
    }
    PagedReportWindow* Open() { return OpenFromMenu<PagedReportWindow>(*main, kInvoice); }
    // Department 01, March 2024, fee items extracted.
    void Extract(PagedReportWindow* w) {
        ClickEntry(w, 0);
        SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31));
        ClickButton(w, "Command3");
    }

    ReportDefinition definition;
    WatchedStatement::Hooks hooks;
};

}  // namespace

// The window's life: the conditions checked, Command1 closes it, the menu
// opens a fresh one once, and the program's close takes it along.
TEST_F(InvoiceWindowTest, ChecksConditionsClosesAndOpensFreshAtItsDesignSizeOnce) {
    PagedReportWindow* w = Open();
    ASSERT_TRUE(w);
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts(), QStringList{"请先选择统计部门!"});
    ClickEntry(w, 0);
    SetDates(w, QDate(2024, 3, 31), QDate(2024, 3, 1));
    ClickButton(w, "Command3");
    EXPECT_EQ(dialogs.texts().last(), "截至日期不能小于开始日期!");
    EXPECT_EQ(w->focusWidget(), Child<QDateEdit>(w, "DTPicker1(1)"));
    EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
    // The header alone: nothing to export, no message.
    dialogs.messages.clear();
    ClickButton(w, "Command2");
    EXPECT_TRUE(dialogs.saveDialogDefaults.isEmpty());
    EXPECT_TRUE(dialogs.messages.empty());

    Extract(w);
    ASSERT_TRUE(Child<QPushButton>(w, "Command6")->isEnabled());
    ClickButton(w, "Command1");
    EXPECT_EQ(main->OpenWindow(kInvoice), nullptr);
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());
    AppSession().SessionOperatorText = "张三";
    AppSession().SessionDepartmentText = "财务部";
    w = Open();
    AppSession().SessionOperatorText.clear();
    AppSession().SessionDepartmentText.clear();
    ASSERT_TRUE(w);
    EXPECT_EQ(w->TitleText(), "增值税开票明细表");
    EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
    EXPECT_TRUE(w->SelectedEntry().isEmpty());
    EXPECT_EQ(w->Grid2().Rows(), 1);
    EXPECT_TRUE(w->ChosenConditions().DeptCode.isEmpty());
    for (const auto& [panel, text] : std::vector<std::pair<const char*, QString>>{
             {"Panel2", "张三"},
             {"Panel4", "财务部"},
             {"Panel8", QDate::currentDate().toString("yyyy-MM-dd")}})
        EXPECT_EQ(Child<QLabel>(w, panel)->text(), text) << panel;
    QMdiSubWindow* frame = Frame(w);
    EXPECT_FALSE(frame->isMaximized());
    // 18120 by 10950 twips at 15 twips a pixel.
    EXPECT_NEAR(w->width(), 1208, 1);
    EXPECT_NEAR(w->height(), 730, 1);
    // Chosen again: raised, not reopened.
    EXPECT_EQ(Open(), w);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);
    EXPECT_EQ(main->Area()->activeSubWindow(), frame);
    // In a small area: clipped to it.
    w->close();
    main->resize(900, 600);
    Settle();
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());  // the frame went along
    w = Open();
    const QSize area = main->Area()->viewport()->size();
    EXPECT_LE(Frame(w)->width(), area.width());
    EXPECT_LE(Frame(w)->height(), area.height());
    EXPECT_GT(w->height(), 300);

    // Privileges take the reports off the menu; the program asked to close
    // and answered No stays, without the window.
    AppSession().SessionConnection = db.Session();
    QString memo = "报表";
    main->权限设置(memo);
    AppSession().SessionConnection.reset();
    EXPECT_FALSE(main->findChild<QAction*>("统计报表")->isEnabled());
    for (const ReportDefinition* report : AllReports())
        EXPECT_FALSE(main->findChild<QAction*>(report->menuEntry)->isEnabled())
            << report->command.toStdString();
    EXPECT_TRUE(main->findChild<QAction*>("关于软件")->isEnabled());
    dialogs.answers = {MsgResult::No};
    EXPECT_FALSE(main->close());
    EXPECT_EQ(dialogs.texts().last(), "确认要退出系统吗？");
    EXPECT_TRUE(main->isVisible());
    Settle();
    EXPECT_EQ(main->OpenWindow(kInvoice), nullptr);
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());
}

TEST_F(InvoiceWindowTest, RatioEditorOnDataCellsEnterAndTheSumRule) {
    PagedReportWindow* w = Open();
    Extract(w);
    auto* ratioView = Child<FlexGridView>(w, "MSFlexGrid2");
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    ASSERT_EQ(w->Grid2().Rows(), 2);
    // The editor lies over the cell it edits.
    auto expectOver = [&](int col) {
        const QRect cell = ratioView->CellRect(1, col);
        EXPECT_EQ(QRect(ratioView->mapTo(editor->parentWidget(), cell.topLeft()), cell.size()),
                  editor->geometry());
    };
    // The headings of the shares are no cells to edit.
    for (int col : {2, 3}) {
        ClickCell(ratioView, 0, col);
        EXPECT_FALSE(editor->isVisible()) << col;
    }
    // Both shares in sight: the item names give up what the grid lacks.
    EXPECT_FALSE(ratioView->horizontalScrollBar()->isVisible());
    ClickCell(ratioView, 1, 2);
    ASSERT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->text(), "70");
    expectOver(2);
    ClickCell(ratioView, 1, 1);  // elsewhere: closed
    EXPECT_FALSE(editor->isVisible());

    ClickCell(ratioView, 1, 2);
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
    EXPECT_EQ(ratioView->model()->index(1, 2).data().toString(), "70");

    ClickCell(ratioView, 1, 3);
    ASSERT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->text(), "30");
    expectOver(3);
}

TEST_F(InvoiceWindowTest, ArrowKeysCarryTheTitleAndATallerWindowShowsTheEndOfTheList) {
    PagedReportWindow* w = Open();
    QMdiSubWindow* frame = Frame(w);
    frame->resize(frame->width(), frame->height() + 150);
    Settle();
    ASSERT_GT(w->height(), 850);
    auto* list = Child<QListWidget>(w, "List1");
    list->setFocus();
    for (const auto& [key, title] :
         std::vector<std::pair<Qt::Key, QString>>{{Qt::Key_Down, "【云栖苑】增值税开票明细表"},
                                                  {Qt::Key_Down, "【分部02】增值税开票明细表"}}) {
        QTest::keyClick(list, key);
        Settle();
        EXPECT_EQ(w->TitleText(), title);
    }
    // Command3 reads the department the keys chose.
    SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31));
    ClickButton(w, "Command3");
    EXPECT_EQ(w->ChosenConditions().DeptCode, "02");
    EXPECT_EQ(dialogs.texts().last(), "没有满足条件的开票数据,请重新设置条件!");
    QTest::keyClick(list, Qt::Key_Up);
    Settle();
    EXPECT_EQ(w->TitleText(), "【云栖苑】增值税开票明细表");

    QTest::keyClick(list, Qt::Key_End);
    Settle();
    const QListWidgetItem* last = list->item(list->count() - 1);
    EXPECT_TRUE(last->isSelected());
    auto* pane = Child<QWidget>(w, "Picture2");
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

// Command6 disables itself before the header, or after it where the report
// says so (as the parking report asks); a resize keeps the page shown; a run
// ends with its page or its message before the busy panel goes.
TEST_F(InvoiceWindowTest, Command6AResizeAndTheEndOfARun) {
    PagedReportWindow* w = nullptr;
    std::vector<std::pair<bool, bool>> seen;  // the busy panel shown, the hourglass on
    auto look = [&] {
        seen.emplace_back(Child(w, "Picture5")->isVisible(),
                          QApplication::overrideCursor() != nullptr);
    };
    hooks.onShowPage = look;
    dialogs.onMessage = look;
    for (const bool first : {true, false}) {
        if (w) ClickButton(w, "Command1");
        definition.headerBeforeDisable = first;
        w = Open();
        Extract(w);
        auto* command6 = Child<QPushButton>(w, "Command6");
        std::vector<bool> enabledAtHeader;
        hooks.onBuildHeader = [&] { enabledAtHeader.push_back(command6->isEnabled()); };
        ClickButton(w, "Command6");
        hooks.onBuildHeader = nullptr;
        EXPECT_EQ(enabledAtHeader, std::vector<bool>{first});
        EXPECT_FALSE(command6->isEnabled());
    }
    // Resized: margins, page and rows kept, the next page longer.
    auto* label = Child<QLabel>(w, "Label19");
    const QString page = label->text();
    const int rowsShown = w->Grid1().Rows(), pageSize = w->PageSize();
    QMdiSubWindow* frame = Frame(w);
    frame->resize(frame->width() - 100, frame->height() + 120);
    Settle();
    EXPECT_NEAR(Child(w, "Picture4")->width() - Child(w, "Command1")->geometry().right() - 1,
                Child(w, "Command2")->x(), 1);
    EXPECT_EQ(label->text(), page);
    EXPECT_EQ(w->Grid1().Rows(), rowsShown);
    EXPECT_GT(w->PageSize(), pageSize);
    // The title stays centred over the result area.
    auto *title = Child(w, "Label1(0)"), *area = Child(w, "Picture3");
    EXPECT_NEAR(title->x() + title->width() / 2.0, area->x() + area->width() / 2.0, 1);
    // No rows in May: the message, then the panel goes.
    ClickButton(w, "Command3");
    SetDates(w, QDate(2024, 5, 1), QDate(2024, 5, 31));
    ClickButton(w, "Command6");
    EXPECT_EQ(dialogs.texts().last(), "无满足统计条件的数据，请重新设置统计条件！");
    EXPECT_EQ(seen, (std::vector<std::pair<bool, bool>>(3, {true, true})));
    EXPECT_FALSE(Child(w, "Picture5")->isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(w->Grid1().Rows(), 2);
}

TEST_F(InvoiceWindowTest, PagerStripGoesThroughThePages) {
    PagedReportWindow* w = Open();
    // Before any run Text6 fails safe (the box is emptied); an image click is
    // a run-time error, subscript out of range.
    auto* text6 = Child<QLineEdit>(w, "Text6");
    auto* label = Child<QLabel>(w, "Label19");
    Type(text6, "2");
    EXPECT_TRUE(text6->text().isEmpty());
    ClickButton(w, "Image2(2)");
    EXPECT_EQ(errors, std::vector<long>{9});
    Extract(w);
    ClickButton(w, "Command6");
    const int pages = w->Statement().PageCount();
    ASSERT_GE(pages, 2);
    auto expectPage = [&](int page) {
        EXPECT_EQ(w->CurrentPage(), page);
        EXPECT_EQ(label->text(), Pager::PageText(page, pages));
        EXPECT_EQ(w->Grid1().TextMatrix(2, 0),
                  QString::number(Pager::FirstRowOf(page, w->PageSize())));
    };
    expectPage(1);
    for (const auto& [image, page] :
         std::vector<std::pair<const char*, int>>{{"Image2(3)", pages},
                                                  {"Image2(2)", pages},
                                                  {"Image2(1)", pages - 1},
                                                  {"Image2(0)", 1},
                                                  {"Image2(1)", 1}}) {
        SCOPED_TRACE(image);
        ClickButton(w, image);
        expectPage(page);
    }
    Type(text6, "1.5");  // ties to even
    expectPage(2);
    EXPECT_EQ(errors.size(), 1u);

    // The label holds five-digit counts whole, clear of the images beside it.
    EXPECT_LE(label->fontMetrics().horizontalAdvance(Pager::PageText(99999, 99999)),
              label->width());
    EXPECT_LT(label->geometry().right(), Child(w, "Image2(2)")->geometry().left());
    // A run without rows: the label reads no pages, while its message is up and after.
    Extract(w);
    SetDates(w, QDate(2030, 1, 1), QDate(2030, 1, 31));
    QString atMessage;
    dialogs.onMessage = [&] { atMessage = label->text(); };
    ClickButton(w, "Command6");
    EXPECT_EQ(atMessage, Pager::EmptyPageText());
    EXPECT_EQ(label->text(), Pager::EmptyPageText());
    EXPECT_EQ(w->Grid1().Rows(), 2);
}

// Every page is shown from its first row; the page counts rows as drawn.
TEST_F(InvoiceWindowTest, EachPageFromItsFirstRowAndItsLastRowWhole) {
    for (int i = 1; i <= 40; ++i)  // three pages or more, the first two full
        db.Add({.no = QString("M%1").arg(i, 4, 10, QChar('0')),
                .issued = "2024-03-11",
                .amount = 100,
                .dept = "01"});
    PagedReportWindow* w = Open();
    Extract(w);
    ClickButton(w, "Command6");
    auto* grid = Child<FlexGridView>(w, "MSFlexGrid1");
    const int last = w->Grid1().Rows() - 1;
    EXPECT_EQ(last - 1, w->PageSize());
    EXPECT_EQ(w->PageSize(), Pager::PageSizeFor(grid->height(), grid->DrawnRowHeight(0)));
    // So low after the run that a page scrolls (the page size stays as it
    // was): the next one starts at its top all the same.
    QMdiSubWindow* frame = Frame(w);
    frame->resize(frame->width(), 260);
    Settle();
    ASSERT_GE(w->Statement().PageCount(), 3);
    QScrollBar* rows = grid->verticalScrollBar();
    rows->setValue(rows->maximum());
    Settle();
    ASSERT_GT(rows->value(), 0);
    ClickButton(w, "Image2(2)");
    EXPECT_EQ(w->CurrentPage(), 2);
    EXPECT_EQ(rows->value(), 0);
    EXPECT_EQ(grid->CellAt(grid->CellRect(2, 0).center()), std::make_pair(2, 0));
}

// A click made while a statement runs waits in the queue; it must not act
// once the run is over. Afterwards the buttons answer the mouse and Enter.
TEST_F(InvoiceWindowTest, InputDuringARunDoesNotActAfterIt) {
    PagedReportWindow* w = Open();
    Extract(w);
    auto* command3 = Child<QPushButton>(w, "Command3");
    bool clicked = false;
    hooks.onShowPage = [&] {
        if (std::exchange(clicked, true)) return;
        const QPoint at = command3->rect().center();
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
            QCoreApplication::postEvent(
                command3,
                new QMouseEvent(type, at, command3->mapToGlobal(at), Qt::LeftButton,
                                type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                                Qt::NoModifier));
    };
    ClickButton(w, "Command6");
    Settle();
    ASSERT_TRUE(clicked);
    auto* label = Child<QLabel>(w, "Label19");
    EXPECT_GT(w->Grid1().Rows(), 2);
    EXPECT_EQ(label->text(), Pager::PageText(1, w->Statement().PageCount()));
    // Now Enter on the focused button extracts, and the page text goes with the rows.
    command3->setFocus();
    QTest::keyClick(command3, Qt::Key_Return);
    Settle();
    EXPECT_EQ(w->Grid1().Rows(), 2);
    EXPECT_EQ(label->text(), Pager::EmptyPageText());
    EXPECT_TRUE(Child<QPushButton>(w, "Command6")->isEnabled());
}

// The window on a demo ledger, as the README shows it.
class InvoiceWindowDemoTest : public WindowTest {};

TEST_F(InvoiceWindowDemoTest, ScreenshotOfTheWindowOpenedFromTheMenu) {
    QTemporaryDir dir;
    WriteDemoDatabase(dir.filePath("demo.sqlite"), 3000, 7);
    session = DatabaseSession::OpenEmbedded(dir.filePath("demo.sqlite"));
    main = MainWindowOfAllReports(*session);
    main->resize(1280, 900);
    auto* w = OpenFromMenu<PagedReportWindow>(*main, kInvoice);
    ASSERT_TRUE(w);
    ASSERT_TRUE(w->SelectedEntry().isEmpty());
    ClickEntry(w, 0);  // department 01
    SetDates(w, QDate(2024, 1, 1), QDate(2024, 12, 31));
    ClickButton(w, "Command3");
    ClickButton(w, "Command6");
    EXPECT_GT(w->Grid1().Rows(), 10);
    EXPECT_TRUE(dialogs.messages.empty());
    if (const QByteArray shot = qgetenv("YUNQI_SCREENSHOT"); !shot.isEmpty())
        EXPECT_TRUE(main->grab().save(QString::fromUtf8(shot)));
}

// ---- Runs beside the window's thread, and stopped ---------------------------------

namespace {

enum class StopBy { Escape, StopButton, Close };

// Which window, how the operator stops it, and at which query of which
// button's run (the reconciliation's run has two steps, each on a thread of
// its own; a paged window's statistics follow an extraction).
struct StopRow {
    const char* name;
    const char* report;
    StopBy by;
    const char* button;
    int atQuery;
};
void PrintTo(const StopRow& row, std::ostream* os) { *os << row.name; }

const StopRow kStopRows[] = {
    {"invoiceExtractingByEscape", "invoice", StopBy::Escape, "Command3", 1},
    {"invoiceCountingByTheButton", "invoice", StopBy::StopButton, "Command6", 1},
    {"preinvoiceCountingByEscape", "preinvoice", StopBy::Escape, "Command6", 1},
    {"parkingExtractingByTheButton", "parking", StopBy::StopButton, "Command3", 1},
    {"parkingCountingByClosing", "parking", StopBy::Close, "Command6", 1},
    {"reconciliationExtractingByEscape", "reconciliation", StopBy::Escape, "Command3", 1},
    {"reconciliationRunningByTheButton", "reconciliation", StopBy::StopButton, "Command3", 4},
};

// Waits, on the work's thread, until done() holds; a minute is a hang.
bool WaitFor(const std::function<bool()>& done) {
    for (int i = 0; i < 6000 && !done(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return done();
}

class StoppedRuns : public WindowTest, public ::testing::WithParamInterface<StopRow> {
  protected:
    // The conditions of the golden statements, and a run: extraction, then
    // the statistics of a paged window.
    void Run(ReportWindow* w) {
        ClickButton(w, "Command3");
        if (paged) ClickButton(w, "Command6");
    }
    QString Shown(ReportWindow* w) {
        return GridCsv(w->Grid1()) + (paged ? Child<QLabel>(w, "Label19")->text() : QString());
    }
    bool paged = false;
};

}  // namespace

// The window paints and ticks while the statement runs; stopped, it shows the
// statement of the run before, and the run after is as if none was stopped.
TEST_P(StoppedRuns, TheWindowLivesAndAStopPutsItBack) {
    const StopRow& row = GetParam();
    const ReportDefinition& report = *FindReport(row.report);
    FillGoldenLedger(db);
    ReportWindow* w = OpenOnLedger(report.menuEntry);
    ASSERT_TRUE(w);
    paged = report.conditions == ConditionsKind::DateWindow;
    paged ? SetDates(w, QDate(2024, 3, 1), QDate(2024, 3, 31)) : Months(w, "2024", "03", "03");
    ClickEntry(w, 0);
    Run(w);
    ASSERT_GT(w->Grid1().Rows(), 2);

    const QString statement = Shown(w);
    // Counting follows a new extraction, which empties the grid.
    if (QLatin1String(row.button) == QLatin1String("Command6")) ClickButton(w, "Command3");
    const QString before = Shown(w);

    std::atomic<int> ticks = 0, queries = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] { ++ticks; });
    tick.start(10);
    bool ticked = false, stopSeen = false;
    QWidget* stop = Child(w, "CommandStop");
    session->SetSqlLog([&](const QString&) {
        if (QThread::currentThread() == qApp->thread() || ++queries != row.atQuery) return;
        const int seen = ticks;
        ticked = WaitFor([&] { return ticks >= seen + 2; });
        QMetaObject::invokeMethod(
            qApp,
            [&] {
                switch (row.by) {
                    case StopBy::Escape:
                        QTest::keyClick(Child(w, "MSFlexGrid1"), Qt::Key_Escape);
                        break;
                    case StopBy::StopButton:
                        ClickAt(w, stop->mapTo(w, stop->rect().center()));
                        break;
                    case StopBy::Close:
                        Frame(w)->close();
                        break;
                }
            },
            Qt::QueuedConnection);
        stopSeen = WaitFor([] { return StopRequestedHere(); });
    });
    ClickButton(w, row.button);
    Settle();
    session->SetSqlLog(nullptr);
    EXPECT_TRUE(ticked) << "the window's timer stood still during the run";
    EXPECT_TRUE(stopSeen);
    EXPECT_TRUE(dialogs.messages.empty()) << dialogs.texts().join('|').toStdString();
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    if (row.by == StopBy::Close) {
        EXPECT_EQ(main->OpenWindow(report.menuEntry), nullptr) << "the close was not carried out";
        return;
    }
    EXPECT_EQ(Shown(w).toStdString(), before.toStdString());
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    if (paged) EXPECT_FALSE(Child<QPushButton>(w, "Command6")->isEnabled());
    Run(w);
    EXPECT_EQ(Shown(w).toStdString(), statement.toStdString());
}

INSTANTIATE_TEST_SUITE_P(Windows, StoppedRuns, ::testing::ValuesIn(kStopRows),
                         [](const auto& info) { return std::string(info.param.name); });

// An export stopped while its rows go out writes nothing: the old file stays,
// no temporary file is left, and the operator is told as for a cancelled dialog.
TEST_F(InvoiceWindowTest, AStoppedExportLeavesTheOldFile) {
    PagedReportWindow* w = Open();
    Extract(w);
    ClickButton(w, "Command6");
    QTemporaryDir dir;
    const QString target = dir.filePath("out.xlsx");
    QFile old(target);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write("the old statement") > 0);
    old.close();
    dialogs.saveAnswers = {target};
    bool stopSeen = false;
    dialogs.onYield = [&] {
        if (QThread::currentThread() == qApp->thread() || stopSeen) return;
        QMetaObject::invokeMethod(
            qApp, [&] { QTest::keyClick(w, Qt::Key_Escape); }, Qt::QueuedConnection);
        stopSeen = WaitFor([] { return StopRequestedHere(); });
    };
    ClickButton(w, "Command2");
    dialogs.onYield = nullptr;
    EXPECT_TRUE(stopSeen);
    EXPECT_EQ(dialogs.texts(), QStringList{QStringLiteral("您取消了导出操作！")});
    EXPECT_TRUE(w->LastExport().isEmpty());
    QFile kept(target);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "the old statement");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"out.xlsx"});
    EXPECT_TRUE(Child(w, "Command2")->isVisible());
    EXPECT_FALSE(Child(w, "ProgressBar1")->isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}
