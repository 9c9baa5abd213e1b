#include "db/PackedRows.h"

#include <gtest/gtest.h>

#include <QDateTime>

using namespace yunqi;

// Every kind of value a driver hands over comes back as it went in, with its
// type, a Null apart from an empty text, across the blocks' boundaries.
TEST(PackedRows, GiveBackEveryRowAsItWasInOrder) {
    const QVariantList row{
        QVariant(),
        QStringLiteral("甲公司,\"丙\"\n"),
        QString(""),
        0.1,
        -0.0,
        qlonglong(-9007199254740993),
        42,
        QDateTime(QDate(2024, 3, 31), QTime(16, 0, 0, 123)),
        QDate(1900, 1, 1),
        QTime(23, 59, 59),
        QByteArray("\x81\x00", 2),
        QVariant(true),
    };
    PackedRows rows;
    constexpr int kRows = 40000;  // more than one block
    for (int i = 0; i < kRows; ++i) {
        QVariantList r = row;
        r[6] = i;
        rows.Add(r);
    }
    QVariantList got;
    for (int i = 0; i < kRows; ++i) {
        ASSERT_TRUE(rows.Take(&got)) << i;
        ASSERT_EQ(got.size(), row.size());
        for (int c = 0; c < row.size(); ++c) {
            const QVariant& want = c == 6 ? QVariant(i) : row[c];
            EXPECT_EQ(got[c].isValid(), want.isValid()) << i << "," << c;
            EXPECT_EQ(got[c].typeId(), want.typeId()) << i << "," << c;
            EXPECT_EQ(got[c], want) << i << "," << c;
        }
        if (HasFailure()) return;
    }
    EXPECT_TRUE(std::signbit(got[4].toDouble()));
    EXPECT_FALSE(rows.Take(&got));
}
