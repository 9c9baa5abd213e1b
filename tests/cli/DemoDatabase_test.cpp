#include "cli/DemoDatabase.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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

// The rows of "table Where ...".
double Scalar(DatabaseSession& s, const char* from) {
    return s.Open(QStringLiteral("Select count(*) From ") + QString::fromUtf8(from))
        .Value(0)
        .toDouble();
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

// Every case the statements show, every table the programs read.
TEST(DemoDatabaseTest, HoldsEveryCaseTheStatementsShow) {
    QTemporaryDir dir;
    const QString file = dir.filePath("d.sqlite");
    EXPECT_EQ(WriteDemoDatabase(file, 4000, 1).tickets, 4000);
    auto s = DatabaseSession::OpenEmbedded(file);
    EXPECT_EQ(Scalar(*s, "票据"), 4000);
    for (const char* where :
         {"票据 Where 作废日期 Is Not Null", "票据 Where 被换票票据编号 Is Not Null",
          "票据 Where 金额 < 0", "票据 Where 收款日期 Is Null", "票据 Where 预开 = 1",
          "票据 Where date(收款日期) > date(开票日期)", "票据 Where 收款方式 = '微信'",
          "收款方式列表 Where 收款方式 = '微信支付'", "票据类型 Where 定额 = 1",
          "票据类型 Where 定额 = 0 And 票据类型 Like '%专用发票%'",
          "票据类型 Where 定额 = 0 And 票据类型 Like '%普通发票%'",
          "票据类型 Where 定额 = 0 And 票据类型 Like '%电子发票%'",
          "票据类型 Where 定额 = 0 And 票据类型 Like '%收据%'",
          "职能部门new Where 终止日期 Is Not Null",
          "setupsfxm Where 收费类别 Like '%停车%' And xm Like '%(%'", "GroupPrivilege",
          "岗位权限设置", "税控盘收费项目设置"})
        EXPECT_GT(Scalar(*s, where), 0) << where;
    // 微信 is counted as 微信支付, which the list names instead.
    EXPECT_EQ(Scalar(*s, "收款方式列表 Where 收款方式 = '微信'"), 0);
}
