#include "core/MessageForms.h"

#include <gtest/gtest.h>

#include "core/Dialogs.h"
#include "core/ErrorTrap.h"
#include "core/StopRequest.h"

using namespace yunqi;

// Each form as an error trap shows it; the start-up form is met in the
// start-up tests, the export's in the export tests.
TEST(MessageFormsTest, EachTrapFormShowsTheCaughtErrorAndReturnsIt) {
    struct Row {
        const char* name;
        TrapForm form;
        long number;
        const char* text;
        const char* title;
    };
    const Row rows[] = {
        {"menu, two lines", TrapForm::Menu, -2147217865,
         "错误号：-2147217865\n错误描述：对象名 'GroupPrivilege' 无效。", "提示"},
        {"report", TrapForm::Report, 94, "错误码: 94 错误描述: 对象名 'GroupPrivilege' 无效。",
         "系统提示"},
        {"trap, run together", TrapForm::Trap, 94, "94对象名 'GroupPrivilege' 无效。", "系统提示"},
        {"trap, negative", TrapForm::Trap, -2147217865, "-2147217865对象名 'GroupPrivilege' 无效。",
         "系统提示"},
        {"blank trap, positive", TrapForm::TrapBlankBeforePositive, 94,
         " 94对象名 'GroupPrivilege' 无效。", "系统提示"},
        {"blank trap, zero", TrapForm::TrapBlankBeforePositive, 0,
         " 0对象名 'GroupPrivilege' 无效。", "系统提示"},
        {"blank trap, negative", TrapForm::TrapBlankBeforePositive, -2147217865,
         "-2147217865对象名 'GroupPrivilege' 无效。", "系统提示"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RecordingDialogs dialogs;
        SetAppDialogs(&dialogs);
        const Trapped trapped = RunTrapped(row.form, [&] {
            throw RuntimeError(row.number, QStringLiteral("对象名 'GroupPrivilege' 无效。"));
        });
        SetAppDialogs(nullptr);
        ASSERT_TRUE(trapped);
        EXPECT_EQ(trapped->number(), row.number);
        ASSERT_EQ(dialogs.messages.size(), 1u);
        EXPECT_EQ(dialogs.messages[0].text, QString::fromUtf8(row.text));
        EXPECT_EQ(dialogs.messages[0].title, QString::fromUtf8(row.title));
        EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::Information);
    }
}

// A stop is no error: it passes the trap unshown to whoever started the work.
TEST(MessageFormsTest, ATrapShowsNothingWithoutAnErrorAndLetsAStopThrough) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    bool ran = false;
    EXPECT_FALSE(RunTrapped(TrapForm::Trap, [&] { ran = true; }));
    EXPECT_TRUE(ran);
    EXPECT_THROW(RunTrapped(TrapForm::Trap, [] { throw Stopped{}; }), Stopped);
    SetAppDialogs(nullptr);
    EXPECT_TRUE(dialogs.messages.empty());
}
