#include "frame/ValueRules.h"

#include <gtest/gtest.h>

#include <QDateTime>

#include "frame/RuntimeError.h"

using namespace ValueRules;

TEST(ValueRulesTest, MoneyFormatRoundsHalfAwayFromZeroOnTheDecimalForm) {
    EXPECT_EQ(Format0_00(0.015), "0.02");
    EXPECT_EQ(Format0_00(2.675), "2.68");
    EXPECT_EQ(Format0_00(0.125), "0.13");
    EXPECT_EQ(Format0_00(-2.675), "-2.68");
    EXPECT_EQ(Format0_00(1234567.5), "1234567.50");
    EXPECT_EQ(Format0_00(0), "0.00");
    EXPECT_EQ(Format0_00(-0.001), "-0.00");
    EXPECT_EQ(Format0_00(-1.1e-16), "-0.00");
    EXPECT_DOUBLE_EQ(Round2(10.01 * 0.3), 3.0);
    EXPECT_DOUBLE_EQ(Round2(100.5 * 0.3), 30.15);
}

TEST(ValueRulesTest, PaddingNumbersAndDoubles) {
    EXPECT_EQ(Format00(1), "01");
    EXPECT_EQ(Format00(0), "00");
    EXPECT_EQ(Format00(123), "123");
    EXPECT_EQ(Val(" 70%"), 70);
    EXPECT_EQ(Val("abc"), 0);
    EXPECT_EQ(Val("2.5"), 2.5);
    EXPECT_EQ(Val(""), 0);
    EXPECT_EQ(Val("-3x"), -3);
    EXPECT_EQ(DoubleText(0.3), "0.3");
    EXPECT_EQ(DoubleText(33.3 / 100), "0.333");
    EXPECT_EQ(DoubleText(1), "1");
    EXPECT_EQ(DoubleText(0), "0");
    EXPECT_EQ(DoubleText(5), "5");
    EXPECT_EQ(DoubleText(0.05 * 100), "5");
    EXPECT_EQ(RoundHalfEven(2.5), 2);
    EXPECT_EQ(RoundHalfEven(3.5), 4);
    EXPECT_EQ(RoundHalfEven(-2.5), -2);
    EXPECT_EQ(RoundHalfEven(2.51), 3);
    EXPECT_THROW(RoundHalfEven(1e12), RuntimeError);
}

TEST(ValueRulesTest, DatesFromEveryFormTheEngineGives) {
    const QDate d(2013, 5, 6);
    EXPECT_EQ(FormatYmdDash(d), "2013-05-06");
    EXPECT_EQ(FormatYmd(d), "20130506");
    EXPECT_EQ(FormatYm(d), "201305");
    EXPECT_EQ(DateTextDash(QVariant("2013-05-06 18:30:00")), "2013-05-06");
    EXPECT_EQ(DateText8(QVariant(QDateTime(d, QTime(23, 59)))), "20130506");
    EXPECT_EQ(DateText6(QVariant(d)), "201305");
    EXPECT_EQ(ToDate(QVariant("2013-05-06")), d);
    try {
        ToDate(QVariant());
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 94);
    }
    try {
        ToDate(QVariant("soon"));
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 13);
    }
}

TEST(ValueRulesTest, TextsOfDatabaseValues) {
    EXPECT_EQ(RemoveCrLf("a\r\nb\rc\nd"), "ab\rc\nd");
    EXPECT_TRUE(IsParkingCategory("临时停车"));
    EXPECT_FALSE(IsParkingCategory("停 车"));
    EXPECT_EQ(TextOrEmpty(QVariant()), "");
    EXPECT_THROW(TextOf(QVariant()), RuntimeError);
    EXPECT_EQ(NumberOf(QVariant("12.5")), 12.5);
}
