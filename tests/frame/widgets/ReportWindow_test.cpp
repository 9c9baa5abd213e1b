#include "frame/widgets/ReportWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>

#include "core/Dialogs.h"
#include "reports/Reports.h"
#include "db/SessionState.h"
#include "shell/widgets/MainWindow.h"
#include "support/TestDatabase.h"

using namespace yunqi;

namespace {

// A ledger of 45 tickets of department 01 in March 2024, one parking item.
class InvoiceWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        db.Exec("INSERT INTO 职能部门new VALUES ('01','一部',NULL)");
        db.Exec("INSERT INTO 设置管理处 VALUES ('01','GY01','云栖苑')");
        db.Exec("INSERT INTO 票据类型 VALUES ('01','增值税专用发票',0)");
        db.Exec("INSERT INTO 票据入库单 VALUES ('S1','01')");
        db.Exec(
            "INSERT INTO setupsfxm VALUES ('01','物业费',0.06,'物业','物业费'),"
            "('07','停车费',0.05,'停车收费','停车费')");
        db.Exec("INSERT INTO 收款方式列表 VALUES ('现金')");
        for (int i = 1; i <= 45; ++i) {
            const QString no = QString("%1").arg(i, 5, 10, QChar('0'));
            db.AddTicket(no, "S1", "2024-03-10", "2024-03-10", QString(), 100, "现金", "甲",
                         QString(), "01");
            db.AddLine("S1", no, i % 2 ? "01" : "07", 100, "NULL");
        }
        session = db.Session();
        main = std::make_unique<MainWindow>(std::map<QString, MainWindow::WindowFactory>{
            {"增值税开票明细表", [this] { return NewReportWindow(*FindReport("invoice"), *session); }}});
        main->show();
    }
    void TearDown() override {
        main.reset();
        SetAppDialogs(nullptr);
    }
    ReportWindow* Open() {
        main->Choose("增值税开票明细表");
        return static_cast<ReportWindow*>(main->OpenWindow("增值税开票明细表"));
    }
    template <typename T>
    static T* Child(QWidget* w, const char* name) {
        return w->findChild<T*>(QString::fromUtf8(name));
    }
    void Prepare(ReportWindow* w) {
        Child<QDateEdit>(w, "DTPicker1(0)")->setDate(QDate(2024, 3, 1));
        Child<QDateEdit>(w, "DTPicker1(1)")->setDate(QDate(2024, 3, 31));
        w->ClickList1(0);
    }

    RecordingDialogs dialogs;
    TestDatabase db;
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<MainWindow> main;
};

}  // namespace

TEST_F(InvoiceWindowTest, RoadOfOneStatement) {
    ReportWindow* w = Open();
    ASSERT_TRUE(w);
    EXPECT_EQ(main->OpenWindow("增值税开票明细表"), Open());  // raised, not reopened
    Prepare(w);
    EXPECT_EQ(w->TitleText(), "【云栖苑】增值税开票明细表");
    auto* command6 = Child<QPushButton>(w, "Command6");
    EXPECT_FALSE(command6->isEnabled());
    w->ClickCommand6();  // no fee items yet: nothing happens
    EXPECT_EQ(w->Grid1().Rows(), 2);

    w->ClickCommand3();
    EXPECT_TRUE(command6->isEnabled());
    ASSERT_EQ(w->Grid2().Rows(), 2);
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    w->ClickGrid2(1, 2);
    EXPECT_TRUE(editor->isVisible());
    editor->setText("60");
    w->EnterTxtGrd();
    EXPECT_EQ(w->Grid2().Col(), 3);
    editor->setText("40");
    w->EnterTxtGrd();
    EXPECT_FALSE(editor->isVisible());
    EXPECT_TRUE(dialogs.messages.empty());

    w->ClickCommand6();
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

    w->ClickImage2(3);
    EXPECT_EQ(w->CurrentPage(), pages);
    EXPECT_EQ(w->Grid1().TextMatrix(w->Grid1().Rows() - 1, 1), "其中");
    w->ClickImage2(0);
    EXPECT_EQ(w->CurrentPage(), 1);

    auto* text6 = Child<QLineEdit>(w, "Text6");
    text6->setText("abc");
    w->EnterText6();
    EXPECT_TRUE(text6->text().isEmpty());
    EXPECT_EQ(w->CurrentPage(), 1);
    if (pages >= 2) {
        text6->setText("1.5");  // ties to even
        w->EnterText6();
        EXPECT_EQ(w->CurrentPage(), 2);
    }

    QTemporaryDir dir;
    dialogs.saveAnswers = {std::nullopt, dir.filePath("本月.xlsx")};
    w->ClickCommand2();
    EXPECT_EQ(dialogs.texts().last(), "您取消了导出操作！");
    EXPECT_TRUE(Child<QPushButton>(w, "Command2")->isVisible());
    w->ClickCommand2();
    EXPECT_EQ(dialogs.saveDialogDefaults.last(), "【云栖苑】增值税开票明细表_20240301-20240331");
    EXPECT_EQ(w->LastExport(), dir.filePath("本月.xlsx"));
    EXPECT_TRUE(QFile::exists(dir.filePath("本月.xlsx")));
    EXPECT_EQ(dialogs.texts().last(), "增值税开票明细表导出成功！");

    // A screenshot for the documentation, when asked for.
    if (const QByteArray shot = qgetenv("YUNQI_SCREENSHOT"); !shot.isEmpty()) {
        main->resize(1400, 860);
        main->Area()->activeSubWindow()->showMaximized();
        QApplication::processEvents();
        w->ClickImage2(0);
        QApplication::processEvents();
        main->grab().save(QString::fromUtf8(shot));
    }
}

TEST_F(InvoiceWindowTest, GuardsAndTheSumRule) {
    ReportWindow* w = Open();
    w->ClickCommand3();
    EXPECT_EQ(dialogs.texts(), QStringList{"请先选择统计部门!"});
    Prepare(w);
    Child<QDateEdit>(w, "DTPicker1(1)")->setDate(QDate(2024, 2, 1));
    w->ClickCommand3();
    EXPECT_EQ(dialogs.texts().last(), "截至日期不能小于开始日期!");
    Child<QDateEdit>(w, "DTPicker1(1)")->setDate(QDate(2024, 3, 31));

    dialogs.messages.clear();
    w->ClickCommand2();  // header only
    EXPECT_TRUE(dialogs.saveDialogDefaults.isEmpty());

    w->ClickCommand3();
    auto* editor = Child<QLineEdit>(w, "txtGRD");
    w->ClickGrid2(1, 2);
    editor->setText("60");
    w->EnterTxtGrd();
    editor->setText("30");
    w->EnterTxtGrd();
    EXPECT_EQ(dialogs.texts(), QStringList{"分成比例总和必须等于100,请重新设置分成比例!"});
    EXPECT_EQ(w->Grid2().Col(), 2);
    EXPECT_TRUE(editor->isVisible());
    // A click elsewhere drops what was typed.
    editor->setText("99");
    w->ClickGrid2(1, 1);
    EXPECT_FALSE(editor->isVisible());
    EXPECT_EQ(w->Grid2().TextMatrix(1, 2), "60");
}

TEST_F(InvoiceWindowTest, ResizeKeepsMarginsAndThePage) {
    ReportWindow* w = Open();
    Prepare(w);
    w->ClickCommand3();
    w->ClickCommand6();
    const QString page = Child<QLabel>(w, "Label19")->text();
    const int rowsShown = w->Grid1().Rows();
    w->parentWidget()->resize(w->parentWidget()->width() + 200, w->parentWidget()->height() + 100);
    QApplication::processEvents();
    auto* strip = Child<QWidget>(w, "Picture4");
    auto* c1 = Child<QPushButton>(w, "Command1");
    auto* c2 = Child<QPushButton>(w, "Command2");
    EXPECT_NEAR(strip->width() - c1->geometry().right() - 1, c2->x(), 1);
    EXPECT_EQ(Child<QLabel>(w, "Label19")->text(), page);
    EXPECT_EQ(w->Grid1().Rows(), rowsShown);
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

    Open();
    dialogs.answers = {MsgResult::No};
    EXPECT_FALSE(main->close());
    EXPECT_EQ(dialogs.texts().last(), "确认要退出系统吗？");
    EXPECT_EQ(dialogs.messages.back().title, "云栖报表台");
    EXPECT_TRUE(main->isVisible());
    QApplication::processEvents();
    EXPECT_EQ(main->OpenWindow("增值税开票明细表"), nullptr);
}
