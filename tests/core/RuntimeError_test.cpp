#include "core/RuntimeError.h"

#include <gtest/gtest.h>

#include <vector>

using namespace yunqi;

namespace {
std::vector<long> reported;
void Record(const RuntimeError& e) { reported.push_back(e.number()); }
}  // namespace

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
