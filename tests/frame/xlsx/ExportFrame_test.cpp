#include "frame/xlsx/ExportFrame.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "core/RuntimeError.h"
#include "support/Files.h"

using namespace yunqi;

using namespace ExportFrame;
using yunqi::test::ReadAll;

namespace {

class RecordingControls : public ExportControls {
  public:
    void SetButtonsVisible(bool v) override { log << (v ? "buttons" : "-buttons"); }
    void ShowProgressBar(int max) override { log << QString("bar %1").arg(max); }
    void SetProgressValue(int v) override { log << QString("row %1").arg(v); }
    void HideProgressBar() override { log << "-bar"; }
    void SetBusyLabelVisible(bool v) override { log << (v ? "label" : "-label"); }
    void SetBusy(bool v) override { log << (v ? "busy" : "-busy"); }
    void FinishFile(const std::function<void()>& finish) override {
        log << "finish";
        finish();
    }
    QStringList log;
};

ExportRequest TwoRows(bool fail = false) {
    return {5, 2, "表_20240101-20241231", "导出成功！",
            [fail](SheetModel& sheet, ExportSteps& steps) {
                sheet.Cells(1, 1).SetValue("标题");
                steps.HeaderWritten();
                for (int r = 1; r <= 2; ++r) {
                    steps.Row(r);
                    sheet.Cells(r + 1, 1).SetValue(double(r));
                    if (fail && r == 2) throw RuntimeError(1004, "写入失败");
                }
                steps.FooterWritten();
            }};
}

}  // namespace

TEST(ExportFrameTest, FileNameRules) {
    EXPECT_EQ(ExportFileStem("/home/a/表.1.xlsx"), "/home/a/表");
    EXPECT_EQ(ExportFileStem("/home/a.b/表.xlsx"), "/home/a");
    try {
        ExportFileStem("/home/a/表");
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 5);
    }
}

TEST(ExportFrameTest, StepsInOrderAndTheFileAtTheStem) {
    QTemporaryDir dir;
    RecordingControls controls;
    RecordingDialogs dialogs;
    dialogs.saveAnswers = {dir.filePath("out.two.xls")};
    const QString file = ExportCommand(TwoRows(), controls, dialogs);
    EXPECT_EQ(file, dir.filePath("out.xlsx"));
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(controls.log, (QStringList{"-buttons", "bar 2", "busy", "label", "row 1", "row 2",
                                         "-label", "finish", "-busy", "-bar", "buttons"}));
    EXPECT_EQ(dialogs.yields, 3);
    EXPECT_EQ(dialogs.saveDialogDefaults, QStringList{"表_20240101-20241231"});
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "导出成功！");
    EXPECT_EQ(dialogs.messages[0].title, "系统提示");
}

TEST(ExportFrameTest, GuardsAndFailuresLeaveFilesAlone) {
    QTemporaryDir dir;
    RecordingControls controls;
    RecordingDialogs dialogs;

    ExportRequest headerOnly = TwoRows();
    headerOnly.gridRows = 2;
    EXPECT_TRUE(ExportCommand(headerOnly, controls, dialogs).isEmpty());
    EXPECT_TRUE(controls.log.isEmpty());

    dialogs.saveAnswers = {std::nullopt};
    EXPECT_TRUE(ExportCommand(TwoRows(), controls, dialogs).isEmpty());
    EXPECT_EQ(dialogs.texts(), QStringList{"您取消了导出操作！"});
    EXPECT_EQ(controls.log, (QStringList{"-buttons", "buttons"}));

    // A name without a dot, a missing folder, a failure while writing.
    const QString existing = dir.filePath("old.xlsx");
    QFile f(existing);
    f.open(QIODevice::WriteOnly);
    f.write("keep me");
    f.close();
    dialogs.messages.clear();
    EXPECT_TRUE(ExportToExcel(dir.filePath("old"), TwoRows(), nullptr, dialogs).isEmpty());
    EXPECT_TRUE(
        ExportToExcel(dir.filePath("missing/old.xlsx"), TwoRows(), nullptr, dialogs).isEmpty());
    EXPECT_TRUE(ExportToExcel(existing, TwoRows(true), nullptr, dialogs).isEmpty());
    ASSERT_EQ(dialogs.messages.size(), 3u);
    EXPECT_TRUE(dialogs.messages[0].text.startsWith("错误号: 5错误描述: "));
    EXPECT_TRUE(dialogs.messages[1].text.startsWith("错误号: 76错误描述: "));
    EXPECT_EQ(dialogs.messages[2].text, "错误号: 1004错误描述: 写入失败");
    EXPECT_EQ(ReadAll(existing), "keep me");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"old.xlsx"});

    // Replaced when the new workbook is complete.
    EXPECT_EQ(ExportToExcel(existing, TwoRows(), nullptr, dialogs), existing);
    EXPECT_TRUE(ReadAll(existing).startsWith("PK"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"old.xlsx"});
}
