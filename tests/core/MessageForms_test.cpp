#include "core/MessageForms.h"

#include <gtest/gtest.h>

#include "core/Dialogs.h"

using namespace yunqi;

// The start-up and report forms are met in the start-up and condition tests.
TEST(MessageFormsTest, TheMenuFormPutsNumberAndDescriptionOnTwoLines) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    MessageForms::ShowMenu(-2147217865, "对象名 'GroupPrivilege' 无效。");
    SetAppDialogs(nullptr);
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].text, "错误号：-2147217865\n错误描述：对象名 'GroupPrivilege' 无效。");
    EXPECT_EQ(dialogs.messages[0].title, "提示");
    EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::Information);
}
