#include "frame/widgets/MonthlyReportWindow.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "frame/widgets/EventDriver.h"
#include "frame/widgets/ReportMenu.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

const QString kEntry = QStringLiteral("开票票据核对表");

std::vector<long>& RecordedErrors() {
    static std::vector<long> errors;
    return errors;
}

// Department 01 at site GY01: 专用 117.00 with tax 17.00 in March 2024,
// 100.00 of it paid in March.
class MonthlyWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        RecordedErrors().clear();
        SetRuntimeErrorHandler(
            [](const RuntimeError& e) { RecordedErrors().push_back(e.number()); });
        db.Department("01", "GY01", "云栖苑");
        db.Department("02", "GY02", "云栖花园");
        db.Types("01 02 04");
        db.Item("001", "物业费", "0.06", "物业");
        db.Exec("INSERT INTO 税控盘收费项目设置 VALUES ('001',0.06,'GY01')");
        db.Add({.no = "1", .issued = "2024-03-01", .amount = 100, .item = "001", .tax = "14.53",
                .dept = "01"});
        db.Add({.no = "2", .issued = "2024-03-05", .paid = kUnpaid, .amount = 17, .item = "001",
                .tax = "2.47", .dept = "01"});
    }
    void TearDown() override {
        main.reset();
        SetRuntimeErrorHandler(nullptr);
        SetAppDialogs(nullptr);
    }
    MonthlyReportWindow* Open() {
        session = db.Session();
        main = MainWindowOfAllReports(*session);
        ChooseFromMenu(main->menuBar(), QStringLiteral("统计报表"), kEntry);
        return qobject_cast<MonthlyReportWindow*>(main->OpenWindow(kEntry));
    }
    template <typename T = QWidget>
    static T* Child(QWidget* w, const char* name) {
        T* child = w->findChild<T*>(QString::fromUtf8(name));
        EXPECT_TRUE(child) << name;
        return child;
    }
    static void ClickEntry(QWidget* w, int row) {
        auto* list = Child<QListWidget>(w, "List1");
        const QRect r = list->visualItemRect(list->item(row));
        ClickAt(list, list->viewport()->mapTo(list, r.center()));
    }
    static void Months(QWidget* w, const char* year, const char* from, const char* to) {
        Child<QComboBox>(w, "Combo1")->setCurrentText(year);
        Child<QComboBox>(w, "Combo2")->setCurrentText(from);
        Child<QComboBox>(w, "Combo3")->setCurrentText(to);
    }

    RecordingDialogs dialogs;
    TestDatabase db;
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<MainWindow> main;
};

}  // namespace

TEST_F(MonthlyWindowTest, LoadsWithTheYearAndMonthPanel) {
    MonthlyReportWindow* w = Open();
    ASSERT_TRUE(w);
    EXPECT_EQ(w->objectName(), "frm票据核对表New");
    EXPECT_EQ(w->windowTitle(), "增值税开票票据核对表");
    EXPECT_EQ(w->TitleText(), "增值税开票票据核对表");
    EXPECT_EQ(Child<QLabel>(w, "Label1(1)")->text(), "增值税票据核对统计条件");
    EXPECT_EQ(Child<QLabel>(w, "Label2")->text(),
              "核对:(专用发票+普通发票+收据=财务交账-当月收预开票+当月未收预开票)");
    EXPECT_EQ(Child<QPushButton>(w, "Command3")->text(), "开始统计");
    for (const char* absent : {"Command6", "MSFlexGrid2", "Picture8", "txtGRD", "DTPicker1(0)"})
        EXPECT_EQ(w->findChild<QWidget*>(absent), nullptr) << absent;

    auto* year = Child<QComboBox>(w, "Combo1");
    ASSERT_EQ(year->count(), 34);
    EXPECT_EQ(year->itemText(0), "2016");
    EXPECT_EQ(year->itemText(33), "2049");
    EXPECT_EQ(year->currentText(), QString::number(QDate::currentDate().year()));
    EXPECT_EQ(Child<QComboBox>(w, "Combo2")->currentText(), "01");
    EXPECT_EQ(Child<QComboBox>(w, "Combo3")->currentText(),
              QString("%1").arg(QDate::currentDate().month(), 2, 10, QChar('0')));
    EXPECT_EQ(Child<QListWidget>(w, "List1")->count(), 2);
    EXPECT_EQ(w->SelectedEntry(), "");
    EXPECT_EQ(w->Grid1().Cols(), 13);
    EXPECT_EQ(w->Grid1().Rows(), 2);
    EXPECT_EQ(w->Conditions().InvoiceTypeList, "'01','02','04'");
}

TEST_F(MonthlyWindowTest, GuardsThenOneButtonDoesTheRun) {
    MonthlyReportWindow* w = Open();
    ASSERT_TRUE(w);
    auto* command3 = Child<QPushButton>(w, "Command3");
    Click(command3);
    EXPECT_EQ(dialogs.texts(), QStringList{"请先选择统计部门!"});

    Months(w, "2024", "12", "01");
    ClickEntry(w, 0);
    EXPECT_EQ(w->TitleText(), "2024年度【云栖苑】票据核对表");
    Click(command3);
    EXPECT_EQ(dialogs.texts().last(), "截至月份不能小于开始月份,请重新选择!");
    EXPECT_EQ(dialogs.messages.back().title, "系统提示");
    EXPECT_EQ(w->Grid1().Rows(), 2);

    dialogs.messages.clear();
    Months(w, "2023", "01", "12");
    Click(command3);
    EXPECT_EQ(dialogs.texts(), QStringList{"没有满足条件的开票数据,请重新设置条件!"});
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    // The title keeps the year of the click.
    EXPECT_EQ(w->TitleText(), "2024年度【云栖苑】票据核对表");

    dialogs.messages.clear();
    Months(w, "2024", "03", "03");
    Click(command3);
    EXPECT_TRUE(dialogs.messages.empty());
    ASSERT_EQ(w->Grid1().Rows(), 5);
    EXPECT_EQ(w->Grid1().TextMatrix(3, 2), "小计");
    EXPECT_EQ(w->Grid1().TextMatrix(3, 12), "0.00");
    EXPECT_EQ(w->Grid1().TextMatrix(4, 1), "合计");
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    QTemporaryDir dir;
    dialogs.saveAnswers = {std::nullopt, dir.filePath("核对.xlsx")};
    Click(Child(w, "Command2"));
    EXPECT_EQ(dialogs.texts().last(), "您取消了导出操作！");
    Click(Child(w, "Command2"));
    EXPECT_EQ(dialogs.saveDialogDefaults.last(), "2024年度【云栖苑】票据核对表");
    EXPECT_EQ(w->LastExport(), dir.filePath("核对.xlsx"));
    EXPECT_TRUE(QFile::exists(dir.filePath("核对.xlsx")));
    EXPECT_EQ(dialogs.texts().last(), "票据核对表导出成功！");
    EXPECT_FALSE(Child(w, "Label2")->isHidden());
    EXPECT_TRUE(RecordedErrors().empty());

    // A screenshot for the documentation, when asked for.
    if (const QByteArray shot = qgetenv("YUNQI_SCREENSHOT"); !shot.isEmpty()) {
        main->Area()->activeSubWindow()->showMaximized();
        Settle();
        main->grab().save(QString::fromUtf8(shot));
    }
}

TEST_F(MonthlyWindowTest, PaneKeepsItsBoxAtTheBottom) {
    MonthlyReportWindow* w = Open();
    ASSERT_TRUE(w);
    for (int grow : {0, 150}) {
        w->parentWidget()->resize(1000 + grow, 700 + grow);
        Settle();
        auto* strip = Child(w, "Picture4");
        auto* box = Child(w, "Picture6");
        auto* list = Child(w, "List1");
        // In twips: Picture6.Top = Picture4.Top - Picture6.Height + 30, and the
        // list reaches 60 below Picture6's top.
        EXPECT_NEAR(box->y(), strip->y() - box->height() + 2, 1);
        EXPECT_NEAR(list->y() + list->height(), box->y() + 4, 1);
        auto* c1 = Child(w, "Command1");
        auto* c2 = Child(w, "Command2");
        EXPECT_NEAR(strip->width() - c1->geometry().right() - 1, c2->x(), 1);
        EXPECT_TRUE(box->isVisible());
        EXPECT_TRUE(Child(w, "Command3")->isVisible());
    }
}

TEST_F(MonthlyWindowTest, UntrappedFailureStopsTheRun) {
    // Without an ordinary type the month's statement has an empty "In ()".
    db.Exec("DELETE FROM 票据类型 WHERE 票据类型代号 = '02'");
    MonthlyReportWindow* w = Open();
    ASSERT_TRUE(w);
    Months(w, "2024", "03", "03");
    ClickEntry(w, 0);
    Click(Child(w, "Command3"));
    EXPECT_EQ(RecordedErrors(), std::vector<long>{102});
    EXPECT_EQ(w->Grid1().Rows(), 2);
    EXPECT_EQ(w->Grid1().Cols(), 14);
    EXPECT_TRUE(Child(w, "Picture5")->isHidden());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}
