// The parking window opened from the main program's menu and driven by mouse
// through one statement: a paper and an electronic batch of March 2024.
#include <gtest/gtest.h>

#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "frame/widgets/ReportMenu.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace yunqi::testing;

TEST(ParkingWindowTest, RoadOfOneStatementFromTheMenu) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    TestDatabase db;
    db.Department("01", "GY01", "云栖苑");
    db.Exec("INSERT INTO 票据入库单 VALUES ('S1','02'),('S2','03')");
    db.Item("07", "停车费", "0.05", "停车收费");
    db.Methods({"现金"});
    for (const char* note : {"S1", "S2"})
        db.Add({.no = "00001", .note = note, .issued = "2024-03-10 09:00:00", .amount = 105,
                .item = "07", .tax = "5", .dept = "01", .order = note == QString("S2") ? "WX1" : QString()});
    auto session = db.Session();
    auto main = MainWindowOfAllReports(*session);
    auto* w = OpenFromMenu(*main, QStringLiteral("停车费明细表"));
    ASSERT_TRUE(w);
    EXPECT_EQ(w->objectName(), QStringLiteral("frm停车费明细表New"));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("停车费明细表"));
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label1(1)"))->text(),
              QStringLiteral("停车费统计条件"));
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label1(10)"))->text(),
              QStringLiteral("收款日期范围"));
    EXPECT_EQ(w->Grid1().Cols(), 4);

    w->findChild<QListWidget*>(QStringLiteral("List1"))->setCurrentRow(0);
    Settle();
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label1(0)"))->text(),
              QStringLiteral("【云栖苑】停车费明细表"));
    w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(0)"))->setDate(QDate(2024, 3, 1));
    w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(1)"))->setDate(QDate(2024, 3, 31));
    Click(w->findChild<QPushButton*>(QStringLiteral("Command3")));
    auto* command6 = w->findChild<QPushButton*>(QStringLiteral("Command6"));
    Click(command6);
    EXPECT_TRUE(dialogs.messages.empty()) << dialogs.texts().join('|').toStdString();
    EXPECT_FALSE(command6->isEnabled());
    const FlexGrid& g = w->Grid1();
    ASSERT_EQ(g.Cols(), 7);
    EXPECT_EQ(g.TextMatrix(1, 3), QStringLiteral("开发商70%"));
    ASSERT_EQ(g.Rows(), 2 + 4);  // two batches, 合计, 其中
    EXPECT_EQ(g.TextMatrix(2, 1), QStringLiteral("00001"));
    EXPECT_EQ(g.TextMatrix(3, 2), QStringLiteral("00001"));
    // Equal numbers of two notes both carry the sum of both.
    EXPECT_EQ(g.TextMatrix(3, 6), QStringLiteral("210.00"));
    EXPECT_EQ(g.TextMatrix(4, 1), QStringLiteral("合计"));
    EXPECT_EQ(g.TextMatrix(5, 5), QStringLiteral("现金"));
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label19"))->text(),
              QStringLiteral("第 01 页 共 01 页"));

    QTemporaryDir dir;
    dialogs.saveAnswers = {dir.filePath("停车.xlsx")};
    Click(w->findChild<QPushButton*>(QStringLiteral("Command2")));
    EXPECT_EQ(dialogs.saveDialogDefaults.last(),
              QStringLiteral("【云栖苑】停车费明细表_20240301-20240331"));
    EXPECT_EQ(dialogs.texts().last(), QStringLiteral("停车费明细表导出成功！"));
    EXPECT_TRUE(QFile::exists(dir.filePath("停车.xlsx")));
    main.reset();
    SetAppDialogs(nullptr);
}
