#include "cli/DemoDatabase.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"

using namespace yunqi;

namespace {

QString Digest(const QString& file) {
    auto s = DatabaseSession::OpenEmbedded(file);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const char* sql :
         {"Select * From 票据 Order by 入库单编号, 票据编号",
          "Select * From 票据开票数据 Order by 入库单编号, 票据编号, 收费项目代号, 金额"}) {
        Recordset rs = s->Open(QString::fromUtf8(sql));
        for (; !rs.AtEnd(); rs.MoveNext())
            for (int i = 0; i < rs.FieldCount(); ++i)
                hash.addData((rs.Value(i).toString() + '|').toUtf8());
    }
    return hash.result().toHex();
}

double Scalar(DatabaseSession& s, const char* sql) {
    Recordset rs = s.Open(QString::fromUtf8(sql));
    return rs.Value(0).toDouble();
}

}  // namespace

TEST(DemoDatabaseTest, SameSeedSameLedgerOtherSeedOther) {
    QTemporaryDir dir;
    WriteDemoDatabase(dir.filePath("a.sqlite"), 500, 7);
    WriteDemoDatabase(dir.filePath("b.sqlite"), 500, 7);
    WriteDemoDatabase(dir.filePath("c.sqlite"), 500, 8);
    EXPECT_EQ(Digest(dir.filePath("a.sqlite")), Digest(dir.filePath("b.sqlite")));
    EXPECT_NE(Digest(dir.filePath("a.sqlite")), Digest(dir.filePath("c.sqlite")));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

TEST(DemoDatabaseTest, HasTheShapeOfAnOfficeLedger) {
    QTemporaryDir dir;
    const QString file = dir.filePath("d.sqlite");
    const DemoSummary summary = WriteDemoDatabase(file, 4000, 1);
    EXPECT_EQ(summary.tickets, 4000);
    auto s = DatabaseSession::OpenEmbedded(file);
    EXPECT_EQ(Scalar(*s, "Select count(*) From 票据"), 4000);
    EXPECT_GE(Scalar(*s, "Select count(*) From 职能部门new Where 终止日期 Is Null"), 4);
    EXPECT_EQ(Scalar(*s, "Select count(*) From 职能部门new Where 终止日期 Is Not Null"), 1);
    for (const char* type : {"专用发票", "普通发票", "电子发票", "收据"})
        EXPECT_EQ(Scalar(*s, QString("Select count(*) From 票据类型 Where 定额=0 And 票据类型 Like "
                                     "'%%1%'")
                                 .arg(type)
                                 .toUtf8()
                                 .constData()),
                  1)
            << type;
    EXPECT_GE(Scalar(*s, "Select count(*) From 票据类型 Where 定额=1"), 1);
    const double items = Scalar(*s, "Select count(*) From setupsfxm");
    EXPECT_TRUE(items >= 10 && items <= 15);
    const double parking =
        Scalar(*s, "Select count(*) From setupsfxm Where 收费类别 Like '%停车%'");
    EXPECT_TRUE(parking >= 2 && parking <= 3);
    EXPECT_EQ(Scalar(*s,
                     "Select count(*) From setupsfxm Where 收费类别 Like '%停车%' And xm Like "
                     "'%(%' And xm Like '%\\%%' Escape '\\'"),
              1);
    EXPECT_GE(Scalar(*s, "Select count(distinct 税率) From setupsfxm"), 4);
    EXPECT_GE(Scalar(*s, "Select count(*) From 票据 Where 收款方式='微信'"), 1);
    EXPECT_EQ(Scalar(*s, "Select count(*) From 收款方式列表 Where 收款方式='微信支付'"), 1);
    EXPECT_EQ(Scalar(*s, "Select count(*) From 收款方式列表 Where 收款方式='微信'"), 0);
    for (const char* kind : {"作废日期 Is Not Null", "被换票票据编号 Is Not Null", "金额 < 0",
                             "收款日期 Is Null", "date(收款日期) > date(开票日期)", "预开 = 1"})
        EXPECT_GT(
            Scalar(*s, (QString("Select count(*) From 票据 Where ") + kind).toUtf8().constData()),
            0)
            << kind;
    EXPECT_EQ(Scalar(*s, "Select count(distinct substr(开票日期,1,4)) From 票据"), 4);
    const double largest = Scalar(
        *s, "Select count(*) From 票据 Group by 开票部门编号 Order by count(*) desc Limit 1");
    EXPECT_GT(largest, 1600);
    EXPECT_LT(largest, 2400);
    EXPECT_GT(Scalar(*s, "Select count(*) From GroupPrivilege"), 0);
    EXPECT_GT(Scalar(*s, "Select count(*) From 岗位权限设置"), 0);
    EXPECT_GT(Scalar(*s, "Select count(*) From 税控盘收费项目设置"), 0);
}

TEST(DemoDatabaseTest, FailureLeavesTheTargetAndNoPartialFile) {
    QTemporaryDir dir;
    const QString target = dir.filePath("busy");
    ASSERT_TRUE(QDir(dir.path()).mkdir("busy"));
    EXPECT_THROW(WriteDemoDatabase(target, 10, 1), RuntimeError);
    EXPECT_TRUE(QFileInfo(target).isDir());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 0);

    // An existing ledger is replaced when the new one is complete.
    const QString file = dir.filePath("d.sqlite");
    WriteDemoDatabase(file, 10, 1);
    WriteDemoDatabase(file, 20, 1);
    auto s = DatabaseSession::OpenEmbedded(file);
    EXPECT_EQ(Scalar(*s, "Select count(*) From 票据"), 20);
}
