#include <gtest/gtest.h>

#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "frame/widgets/ReportWindow.h"
#include "reports/Reports.h"
#include "shell/widgets/MainWindow.h"
#include "support/TestDatabase.h"

using namespace yunqi;

// The parking window through the menu: a paper and an electronic batch of
// March 2024, extracted, run, paged and exported.
TEST(ParkingWindowTest, RoadOfOneStatement) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    TestDatabase db;
    db.Exec("INSERT INTO 职能部门new VALUES ('01','一部',NULL)");
    db.Exec("INSERT INTO 设置管理处 VALUES ('01','GY01','云栖苑')");
    db.Exec("INSERT INTO 票据入库单 VALUES ('S1','02'),('S2','03')");
    db.Exec("INSERT INTO setupsfxm VALUES ('07','停车费',0.05,'停车收费','停车费')");
    db.Exec("INSERT INTO 收款方式列表 VALUES ('现金')");
    for (const char* note : {"S1", "S2"}) {
        db.AddTicket("00001", note, "2024-03-10 09:00:00", "2024-03-10 09:00:00", QString(), 105,
                     "现金", "甲", QString(), "01");
        db.AddLine(note, "00001", "07", 105, "5");
    }
    db.Exec("UPDATE 票据 SET 交易订单号 = 'WX1' WHERE 入库单编号 = 'S2'");
    auto session = db.Session();
    {
        MainWindow main(std::map<QString, MainWindow::WindowFactory>{
            {"停车费明细表", [&] { return NewReportWindow(*FindReport("parking"), *session); }}});
        main.show();
        main.Choose("停车费明细表");
        auto* w = static_cast<ReportWindow*>(main.OpenWindow("停车费明细表"));
        ASSERT_TRUE(w);
        EXPECT_EQ(w->windowTitle(), "停车费明细表");
        EXPECT_EQ(w->findChild<QLabel*>("Label1(10)")->text(), "收款日期范围");
        EXPECT_EQ(w->findChild<QLabel*>("Label1(1)")->text(), "停车费统计条件");
        w->findChild<QDateEdit*>("DTPicker1(0)")->setDate(QDate(2024, 3, 1));
        w->findChild<QDateEdit*>("DTPicker1(1)")->setDate(QDate(2024, 3, 31));
        w->ClickList1(0);
        EXPECT_EQ(w->TitleText(), "【云栖苑】停车费明细表");

        w->ClickCommand3();
        ASSERT_EQ(w->Grid2().Rows(), 2);
        EXPECT_EQ(w->Grid1().Cols(), 7);
        w->ClickCommand6();
        EXPECT_FALSE(w->findChild<QPushButton*>("Command6")->isEnabled());
        const FlexGrid& g = w->Grid1();
        ASSERT_EQ(g.Rows(), 2 + 4);  // two batches, 合计, 其中
        EXPECT_EQ(g.TextMatrix(2, 1), "00001");
        EXPECT_EQ(g.TextMatrix(3, 2), "00001");
        // Equal numbers of two notes both carry the sum of both.
        EXPECT_EQ(g.TextMatrix(3, 6), "210.00");
        EXPECT_EQ(g.TextMatrix(4, 1), "合计");
        EXPECT_EQ(g.TextMatrix(5, 5), "现金");
        EXPECT_EQ(w->findChild<QLabel*>("Label19")->text(), "第 01 页 共 01 页");

        QTemporaryDir dir;
        dialogs.saveAnswers = {dir.filePath("停车.xlsx")};
        w->ClickCommand2();
        EXPECT_TRUE(QFile::exists(dir.filePath("停车.xlsx")));
        EXPECT_EQ(dialogs.texts().last(), "停车费明细表导出成功！");
    }
    SetAppDialogs(nullptr);
}
