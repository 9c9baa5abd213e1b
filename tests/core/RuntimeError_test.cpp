#include "core/RuntimeError.h"

#include <gtest/gtest.h>

#include <vector>

using namespace yunqi;

namespace {
std::vector<long> reported;
void Record(const RuntimeError& e) { reported.push_back(e.number()); }
}  // namespace

TEST(RuntimeErrorReport, PlatformNumbersAndTexts) {
    EXPECT_EQ(RuntimeError::InvalidProcedureCall().number(), 5);
    EXPECT_EQ(RuntimeError::Overflow().number(), 6);
    EXPECT_EQ(RuntimeError::SubscriptOutOfRange().number(), 9);
    EXPECT_EQ(RuntimeError::TypeMismatch().number(), 13);
    EXPECT_EQ(RuntimeError::InvalidUseOfNull().number(), 94);
    const RuntimeError e = RuntimeError::InvalidUseOfNull();
    EXPECT_EQ(e.description(), "Invalid use of Null");
    EXPECT_STREQ(e.what(), "Invalid use of Null");
}

TEST(RuntimeErrorReport, AnInstalledHandlerRecordsInsteadOfEnding) {
    reported.clear();
    SetRuntimeErrorHandler(Record);
    ReportRuntimeError(RuntimeError::TypeMismatch());
    ReportRuntimeError(RuntimeError(20009, "Unable to connect"));
    SetRuntimeErrorHandler(nullptr);
    EXPECT_EQ(reported, (std::vector<long>{13, 20009}));
}

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
