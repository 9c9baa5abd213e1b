#include "core/MessageForms.h"

#include <gtest/gtest.h>

#include "core/Dialogs.h"

using namespace yunqi;

TEST(MessageFormsTest, ThreeFormsWithTheirTitles) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    MessageForms::ShowStartup("[FreeTDS][SQL Server]Login failed");
    MessageForms::ShowMenu(-2147217865, "对象名 'GroupPrivilege' 无效。");
    MessageForms::ShowReport(3265, "Item cannot be found");
    SetAppDialogs(nullptr);

    ASSERT_EQ(dialogs.messages.size(), 3u);
    const auto& m = dialogs.messages;
    EXPECT_EQ(m[0].text, "错误信息：[FreeTDS][SQL Server]Login failed");
    EXPECT_EQ(m[0].title, "信息文本");
    EXPECT_EQ(m[1].text, "错误号：-2147217865\n错误描述：对象名 'GroupPrivilege' 无效。");
    EXPECT_EQ(m[1].title, "提示");
    EXPECT_EQ(m[2].text, "错误码: 3265 错误描述: Item cannot be found");
    EXPECT_EQ(m[2].title, "系统提示");
    for (const auto& message : m) {
        EXPECT_EQ(message.icon, MsgIcon::Information);
        EXPECT_EQ(message.buttons, MsgButtons::Ok);
    }
}
