#include "core/ValueRules.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

#include "core/RuntimeError.h"
#include "support/ErrorNumber.h"

using namespace yunqi;

using namespace ValueRules;

TEST(ValueRulesFormat, HalvesRoundAwayFromZeroOnTheFifteenDigitForm) {
    // Binary 2.675 and 1.005 lie just below the half; the 15-digit form does
    // not. A negative that rounds to zero keeps its sign.
    // clang-format off
    for (const auto& [value, text] : std::vector<std::pair<double, QString>>{
             {0.015, "0.02"}, {2.675, "2.68"}, {1.005, "1.01"}, {0.125, "0.13"}, {-2.675, "-2.68"},
             {-0.005, "-0.01"}, {0.0049, "0.00"}, {0, "0.00"}, {0.5, "0.50"}, {7, "7.00"},
             {0.995, "1.00"}, {99.995, "100.00"}, {1234567.891, "1234567.89"},
             {123456789012.345, "123456789012.35"}, {1e-20, "0.00"}, {-0.001, "-0.00"},
             {-1.1e-16, "-0.00"}, {-0.0049, "-0.00"}})
        // clang-format on
        EXPECT_EQ(Format0_00(value), text) << value;
}

TEST(ValueRulesFormat, Round2IsTheFormattedTextReadBack) {
    // Halves, negatives, large and tiny amounts, -0.00.
    std::uint64_t x = 88172645463325252ull;
    for (int i = 0; i < 20000; ++i) {
        x ^= x << 13, x ^= x >> 7, x ^= x << 17;
        const double scale = std::pow(10.0, double(int(x % 13)) - 4);
        const double v = (double(x % 2000001) - 1000000) / 1000 * scale;
        for (double w : {v, v + 0.005, -v - 0.005}) {
            const double expected = Format0_00(w).toDouble();
            ASSERT_EQ(Round2(w), expected) << w;
            ASSERT_EQ(std::signbit(Round2(w)), std::signbit(expected)) << w;
        }
    }
}

// Beyond 15 digits before the point "0.00" would invent digits; an infinity
// or NaN has none. Each form raises Overflow instead of text.
TEST(ValueRulesFormat, ValuesBeyondTheFormsOverflow) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<const char*, std::function<void(double)>> forms[] = {
        {"0.00", [](double v) { Format0_00(v); }},
        {"Round2", [](double v) { Round2(v); }},
        {"DoubleText", [](double v) { DoubleText(v); }}};
    for (const auto& [name, form] : forms) {
        for (const double value : {inf, -inf, std::nan("")})
            EXPECT_EQ(test::ErrorNumberOf([&] { form(value); }), 6) << name << ' ' << value;
        EXPECT_EQ(test::ErrorNumberOf([&] { form(999999999999999.0); }), 0) << name;
    }
    for (const double value : {1e308, 1e300, 1e64, 1e15, -1e15})
        EXPECT_EQ(test::ErrorNumberOf([&] { Round2(value); }), 6) << value;
    EXPECT_EQ(Format0_00(-999999999999999.0), "-999999999999999.00");
}

TEST(ValueRulesVal, LongestLeadingNumberWithBlanksSkipped) {
    // An exponent counts only with digits behind it.
    // clang-format off
    for (const auto& [text, value] : std::vector<std::pair<QString, double>>{
             {" 70%", 70}, {"abc", 0}, {"", 0}, {"2.5", 2.5}, {"1 2 3", 123}, {"-3.5x", -3.5},
             {".5", 0.5}, {"1.2.3", 1.2}, {"12abc", 12}, {"-", 0}, {"70 %", 70}, {"1e3", 1000},
             {"1e", 1}, {"2e-1x", 0.2}})
        // clang-format on
        EXPECT_EQ(Val(text), value) << text.toStdString();
}

TEST(ValueRulesDoubleText, FifteenDigitsNoExponentNoTrailingZeros) {
    // clang-format off
    for (const auto& [value, text] : std::vector<std::pair<double, QString>>{
             {0.3, "0.3"}, {33.3 / 100, "0.333"}, {0.1 + 0.2, "0.3"}, {1, "1"}, {0, "0"},
             {0.07 * 100, "7"}, {-2.5, "-2.5"}, {1e-5, "0.00001"}, {1e15, "1000000000000000"},
             {123456.789, "123456.789"}})
        // clang-format on
        EXPECT_EQ(DoubleText(value), text) << value;
}

TEST(ValueRulesRounding, TiesGoToEven) {
    // clang-format off
    for (const auto& [value, rounded] : std::vector<std::pair<double, int>>{
             {2.5, 2}, {3.5, 4}, {0.5, 0}, {-2.5, -2}, {2.4999, 2}, {2.51, 3}})
        // clang-format on
        EXPECT_EQ(RoundHalfEven(value), rounded) << value;
}

TEST(ValueRulesRounding, BeyondThirtyTwoBitsOverflows) {
    EXPECT_EQ(RoundHalfEven(2147483647.4), 2147483647);
    EXPECT_EQ(RoundHalfEven(-2147483648.5), -2147483647 - 1);
    EXPECT_EQ(test::ErrorNumberOf([] { RoundHalfEven(2147483647.5); }), 6);
    EXPECT_EQ(test::ErrorNumberOf([] { RoundHalfEven(-3e9); }), 6);
}

TEST(ValueRulesDates, FormatsFromDatesAndDatabaseValues) {
    const QDate d(2024, 3, 5);
    EXPECT_EQ(FormatYmdDash(d), "2024-03-05");
    EXPECT_EQ(FormatYmd(d), "20240305");
    EXPECT_EQ(FormatYm(d), "202403");

    const QVariant text(QStringLiteral("2024-03-05 10:20:30"));
    const QVariant dateTime(QDateTime(d, QTime(23, 59, 59)));
    for (const QVariant& v : {text, dateTime, QVariant(d)}) {
        EXPECT_EQ(ToDate(v), d);
        EXPECT_EQ(DateTextDash(v), "2024-03-05");
        EXPECT_EQ(DateText8(v), "20240305");
        EXPECT_EQ(DateText6(v), "202403");
    }
    EXPECT_EQ(ToDate(QStringLiteral("2024-12-31T08:00:00")), QDate(2024, 12, 31));
}

TEST(ValueRulesDates, NullAndNonDatesRaiseThePlatformErrors) {
    EXPECT_EQ(test::ErrorNumberOf([] { ToDate(QVariant()); }), 94);
    EXPECT_EQ(test::ErrorNumberOf([] { DateText8(QVariant()); }), 94);
    EXPECT_EQ(test::ErrorNumberOf([] { ToDate(QStringLiteral("abc")); }), 13);
    EXPECT_EQ(test::ErrorNumberOf([] { ToDate(QStringLiteral("2024-02-30")); }), 13);
    EXPECT_EQ(test::ErrorNumberOf([] { DateTextDash(QStringLiteral("abc")); }), 13);
}

TEST(ValueRulesText, CrLfPairsGoInOnePass) {
    EXPECT_EQ(RemoveCrLf("东区\r\n一期\r\n"), "东区一期");
    EXPECT_EQ(RemoveCrLf("a\rb\nc"), "a\rb\nc");
    EXPECT_EQ(RemoveCrLf("a\n\rb"), "a\n\rb");
    EXPECT_EQ(RemoveCrLf("\r\r\n\n"), "\r\n");
}

TEST(ValueRulesText, ParkingTestIsContainment) {
    EXPECT_TRUE(IsParkingCategory("停车收费"));
    EXPECT_TRUE(IsParkingCategory("临时停车"));
    EXPECT_FALSE(IsParkingCategory("物业收费"));
    EXPECT_FALSE(IsParkingCategory("停 车"));
    EXPECT_FALSE(IsParkingCategory(""));
}

TEST(ValueRulesText, DatabaseValues) {
    EXPECT_EQ(TextOf(QVariant(12)), "12");
    EXPECT_EQ(TextOrEmpty(QVariant()), "");
    EXPECT_EQ(test::ErrorNumberOf([] { TextOf(QVariant()); }), 94);
    EXPECT_EQ(NumberOf(QVariant(qlonglong(7))), 7);
    EXPECT_EQ(NumberOf(QVariant(2.675)), 2.675);
    EXPECT_EQ(NumberOf(QVariant(QStringLiteral(" 12.5 "))), 12.5);
    EXPECT_EQ(test::ErrorNumberOf([] { NumberOf(QVariant()); }), 94);
}
