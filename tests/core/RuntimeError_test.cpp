#include "core/RuntimeError.h"

#include <gtest/gtest.h>

using namespace yunqi;

namespace {
void Record(const RuntimeError&) {}
}  // namespace

TEST(RuntimeErrorReportDeathTest, NullRestoresTheDefaultThatEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            SetRuntimeErrorHandler(Record);
            SetRuntimeErrorHandler(nullptr);
            ReportRuntimeError(RuntimeError::InvalidUseOfNull());
        },
        ::testing::ExitedWithCode(1), "Run-time error '94':\nInvalid use of Null");
}

// The desktop program shows the platform's descriptions in Chinese, the
// companion in English; a driver's own text stays as the driver gives it.
TEST(ErrorCatalogueTest, DescriptionsInTheLanguageSet) {
    struct Row {
        ErrorCode code;
        const char* english;
        const char* chinese;
    };
    const Row rows[] = {
        {ErrorCode::InvalidProcedureCall, "Invalid procedure call or argument",
         "无效的过程调用或参数"},
        {ErrorCode::Overflow, "Overflow", "溢出"},
        {ErrorCode::SubscriptOutOfRange, "Subscript out of range", "下标越界"},
        {ErrorCode::TypeMismatch, "Type mismatch", "类型不匹配"},
        {ErrorCode::PathFileAccess, "Path/File access error", "路径/文件访问错误"},
        {ErrorCode::InvalidUseOfNull, "Invalid use of Null", "无效使用 Null"},
        {ErrorCode::CannotOpenDatabaseFile, "unable to open database file",
         "unable to open database file"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ErrorText(row.code, ErrorLanguage::English), QString::fromUtf8(row.english));
        EXPECT_EQ(ErrorText(row.code, ErrorLanguage::Chinese), QString::fromUtf8(row.chinese));
    }
    ASSERT_EQ(CurrentErrorLanguage(), ErrorLanguage::English);
    SetErrorLanguage(ErrorLanguage::Chinese);
    const RuntimeError access(ErrorCode::PathFileAccess, "/a.xlsx: Permission denied");
    const RuntimeError driver(11, "database disk image is malformed");
    SetErrorLanguage(ErrorLanguage::English);
    EXPECT_EQ(access.description(), "路径/文件访问错误: /a.xlsx: Permission denied");
    EXPECT_EQ(driver.description(), "database disk image is malformed");
    EXPECT_EQ(RuntimeError::Overflow().description(), "Overflow");
}
