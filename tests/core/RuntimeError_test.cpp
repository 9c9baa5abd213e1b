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
