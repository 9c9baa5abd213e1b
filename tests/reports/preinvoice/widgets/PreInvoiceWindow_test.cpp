// The pre-invoice window opened from the main program's menu, as the list of
// reports registers it, and driven by mouse through one statement.
#include <gtest/gtest.h>

#include <QDateEdit>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "frame/widgets/ReportMenu.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace yunqi::testing;

TEST(PreInvoiceWindowTest, RoadOfOneStatementFromTheMenu) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    TestDatabase db;
    db.Department("01", "GY01", "云栖苑");
    db.Types("01");
    db.Item("01", "物业费", "0.06", "物业");
    for (const char* no : {"00001", "00002", "00003"})
        db.Add({.no = no, .issued = "2024-03-10", .paid = kUnpaid, .amount = 106, .tax = "6",
                .dept = "01", .pre = 1});
    auto session = db.Session();
    auto main = MainWindowOfAllReports(*session);
    auto* w = OpenFromMenu(*main, QStringLiteral("增值税预开明细表"));
    ASSERT_TRUE(w);
    EXPECT_EQ(w->objectName(), QStringLiteral("frm票据预开明细表New"));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("增值税预开票明细表"));
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label1(1)"))->text(),
              QStringLiteral("增值税预开票统计条件"));
    EXPECT_EQ(w->Grid1().Cols(), 7);

    w->findChild<QListWidget*>(QStringLiteral("List1"))->setCurrentRow(0);
    Settle();
    EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("Label1(0)"))->text(),
              QStringLiteral("【云栖苑】增值税预开票明细表"));
    w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(0)"))->setDate(QDate(2024, 3, 1));
    w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(1)"))->setDate(QDate(2024, 3, 31));
    Click(w->findChild<QPushButton*>(QStringLiteral("Command3")));
    Click(w->findChild<QPushButton*>(QStringLiteral("Command6")));
    EXPECT_TRUE(dialogs.messages.empty()) << dialogs.texts().join('|').toStdString();
    ASSERT_EQ(w->Grid1().Cols(), 9);
    EXPECT_EQ(w->Grid1().TextMatrix(1, 4), QStringLiteral("金额"));
    EXPECT_EQ(w->Grid1().TextMatrix(4, 3), QStringLiteral(""));
    EXPECT_EQ(w->Grid1().TextMatrix(2, 2), QStringLiteral("00001"));
    EXPECT_EQ(w->Grid1().TextMatrix(5, 1), QStringLiteral("合  计"));
    EXPECT_EQ(w->Grid1().TextMatrix(5, 6), QStringLiteral("318.00"));
    EXPECT_EQ(w->Grid1().TextMatrix(2, 7), QStringLiteral("预开"));

    QTemporaryDir dir;
    dialogs.saveAnswers = {dir.filePath("预开.xlsx")};
    Click(w->findChild<QPushButton*>(QStringLiteral("Command2")));
    EXPECT_EQ(dialogs.saveDialogDefaults.last(),
              QStringLiteral("【云栖苑】增值税预开票明细表_20240301-20240331"));
    EXPECT_EQ(dialogs.texts().last(), QStringLiteral("增值税预开票明细表导出成功！"));
    EXPECT_TRUE(QFile::exists(dir.filePath("预开.xlsx")));
    main.reset();
    SetAppDialogs(nullptr);
}
