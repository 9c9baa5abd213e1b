#include "cli/DemoDatabase.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <cmath>
#include <cstdio>

#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "db/EmbeddedSchema.h"

namespace yunqi {

namespace {

// splitmix64: small, and the same numbers on every machine.
class Random {
  public:
    explicit Random(quint64 seed) : state_(seed) {}
    quint64 Next() {
        quint64 z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int Below(int n) { return int(Next() % quint64(n)); }
    bool Chance(int percent) { return Below(1000) < percent * 10; }
    // Index into weights, chosen by weight.
    int Pick(std::initializer_list<int> weights) {
        int total = 0;
        for (int w : weights) total += w;
        int x = Below(total), i = 0;
        for (int w : weights) {
            if (x < w) return i;
            x -= w;
            ++i;
        }
        return i - 1;
    }

  private:
    quint64 state_;
};

struct Department {
    const char* code;
    const char* name;
    const char* site;
    const char* siteName;
    const char* ended;  // 终止日期, or null
    int weight;
};

const Department kDepartments[] = {
    {"01", "云栖苑管理处", "GY01", "云栖苑", nullptr, 50},
    {"02", "云栖花园管理处", "GY02", "云栖花园", nullptr, 20},
    {"03", "云栖商务中心管理处", "GY03", "云栖 商务中心", nullptr, 15},
    {"7", "滨江公寓管理处", "GY07", "滨江公寓\r\n(二期)", nullptr, 10},
    {"04", "老城区管理处", "GY04", "老城区", "2022-06-30 00:00:00", 5},
};

struct TicketType {
    const char* code;
    const char* name;
    int fixed;  // 定额
    int weight;
};

const TicketType kTypes[] = {
    {"01", "增值税专用发票", 0, 15}, {"02", "增值税普通发票", 0, 38},
    {"03", "增值税电子发票", 0, 30}, {"04", "收据", 0, 12},
    {"05", "定额发票", 1, 3},        {"06", "停车定额票", 1, 2},
};

struct Item {
    const char* code;
    const char* name;
    double rate;  // < 0: Null
    const char* category;
};

const Item kItems[] = {
    {"001", "物业服务费", 0.06, "物业收费"}, {"002", "公共能耗费", 0.06, "物业收费"},
    {"003", "水费", 0.03, "水电"},           {"004", "电费", 0.13, "水电"},
    {"005", "垃圾清运费", 0.06, "物业收费"}, {"006", "装修押金", -1, "代收代付"},
    {"007", "地下停车费", 0.05, "停车收费"}, {"008", "临时停车费(含税5%)", 0.05, "临时停车"},
    {"009", "车位管理费", 0.06, "停车管理"}, {"010", "有偿服务费", 0.06, "服务收入"},
    {"011", "会所服务费", 0.06, "服务收入"}, {"012", "广告位租金", 0.09, "租赁收入"},
};

const char* const kListedMethods[] = {"现金", "微信支付", "支付宝", "银行转账", "POS刷卡"};
// What tickets carry: 微信 and 支票 are not in the list.
const char* const kTicketMethods[] = {"现金",     "微信支付", "微信", "支付宝",
                                      "银行转账", "POS刷卡",  "支票"};

const char* const kSurnames[] = {"王", "李", "张", "刘", "陈", "杨", "赵", "黄", "周", "吴"};
const char* const kGiven[] = {"伟", "芳", "娜", "敏", "静", "强", "磊", "洋", "艳", "军"};
const char* const kCompanies[] = {"云栖科技有限公司", "杭州明远贸易有限公司",
                                  "江南餐饮管理有限公司", "青禾教育咨询有限公司"};

void Exec(QSqlQuery& q, const QString& sql) {
    if (!q.exec(sql)) throw RuntimeError(long(ErrorCode::ProviderError), q.lastError().text() + QStringLiteral(": ") + sql);
}

void Run(QSqlQuery& q) {
    if (!q.exec()) throw RuntimeError(long(ErrorCode::ProviderError), q.lastError().text());
}

QString Money(double v) { return QString::number(std::round(v * 100) / 100, 'f', 2); }

void WriteSettings(QSqlQuery& q) {
    for (const Department& d : kDepartments) {
        Exec(q, QStringLiteral("INSERT INTO 职能部门new VALUES ('%1','%2',%3)")
                    .arg(d.code, d.name,
                         d.ended ? QStringLiteral("'%1'").arg(d.ended) : QStringLiteral("NULL")));
        Exec(q, QStringLiteral("INSERT INTO 设置管理处 VALUES ('%1','%2','%3')")
                    .arg(d.code, d.site, d.siteName));
        for (const Item& it : kItems)
            Exec(q,
                 QStringLiteral("INSERT INTO 税控盘收费项目设置 VALUES ('%1',%2,'%3')")
                     .arg(it.code, it.rate < 0 ? QStringLiteral("NULL") : QString::number(it.rate),
                          d.site));
    }
    for (const TicketType& t : kTypes)
        Exec(q, QStringLiteral("INSERT INTO 票据类型 VALUES ('%1','%2',%3)")
                    .arg(t.code, t.name)
                    .arg(t.fixed));
    for (const Item& it : kItems)
        Exec(q, QStringLiteral("INSERT INTO setupsfxm VALUES ('%1','%2',%3,'%4','%2')")
                    .arg(it.code, it.name,
                         it.rate < 0 ? QStringLiteral("NULL") : QString::number(it.rate),
                         it.category));
    for (const char* m : kListedMethods)
        Exec(q, QStringLiteral("INSERT INTO 收款方式列表 VALUES ('%1')").arg(m));
    Exec(q, QStringLiteral("INSERT INTO 岗位权限设置 VALUES (1,'G01','P01',1,'报表'),"
                           "(2,'G02','P02',1,'报表'),(3,'G01','P03',0,'报表')"));
    Exec(q, QStringLiteral(
                "INSERT INTO GroupPrivilege VALUES ('G01','统计报表',1),"
                "('G01','增值税开票明细表',1),('G01','增值税预开票明细表',1),('G02','统计报表',1),"
                "('G02','停车费明细表',1)"));
}

QString Stamp(const QDate& day, Random& rnd) {
    return day.toString(QStringLiteral("yyyy-MM-dd")) +
           QStringLiteral(" %1:%2:%3")
               .arg(8 + rnd.Below(11), 2, 10, QLatin1Char('0'))
               .arg(rnd.Below(60), 2, 10, QLatin1Char('0'))
               .arg(rnd.Below(60), 2, 10, QLatin1Char('0'));
}

DemoSummary WriteTickets(QSqlDatabase& db, int tickets, quint64 seed) {
    Random rnd(seed);
    QSqlQuery q(db);
    Exec(q,
         QStringLiteral("INSERT INTO 票据入库单 SELECT 类型 || '-' || 批, 类型 FROM "
                        "(SELECT 票据类型代号 AS 类型 FROM 票据类型) CROSS JOIN "
                        "(SELECT 'RK01' AS 批 UNION ALL SELECT 'RK02' UNION ALL SELECT 'RK03')"));
    QSqlQuery ticket(db), line(db);
    ticket.prepare(QStringLiteral("INSERT INTO 票据 VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)"));
    line.prepare(QStringLiteral("INSERT INTO 票据开票数据 VALUES (?,?,?,?,?)"));

    const QDate first(2022, 1, 1);
    const int days = first.daysTo(QDate(2025, 12, 31)) + 1;
    std::vector<int> numbers(std::size(kTypes) * 3, 0);
    std::vector<QString> issuedNumbers;
    DemoSummary summary;

    for (int t = 0; t < tickets; ++t) {
        const Department& dept = kDepartments[rnd.Pick({50, 20, 15, 10, 5})];
        const int typeIndex = rnd.Pick({15, 38, 30, 12, 3, 2});
        const int batch = rnd.Below(3);
        const QString note = QStringLiteral("%1-RK0%2").arg(kTypes[typeIndex].code).arg(batch + 1);
        const QString no =
            QStringLiteral("%1").arg(++numbers[typeIndex * 3 + batch], 8, 10, QLatin1Char('0'));
        // The terminated department stopped issuing in mid-2022.
        const int span = dept.ended ? 180 : days;
        const QDate issuedDay = first.addDays(rnd.Below(span));
        const QString issued = Stamp(issuedDay, rnd);

        QVariant paid = Stamp(issuedDay, rnd);
        int preissued = 0;
        const int payment = rnd.Pick({80, 11, 9});
        if (payment == 1) {
            paid = Stamp(issuedDay.addDays(1 + rnd.Below(60)), rnd);
        } else if (payment == 2) {
            paid = QVariant(QMetaType::fromType<QString>());
            preissued = 1;
        }
        QVariant voided(QMetaType::fromType<QString>());
        if (rnd.Chance(3)) voided = Stamp(issuedDay.addDays(rnd.Below(10)), rnd);
        QVariant replaced(QMetaType::fromType<QString>());
        if (!issuedNumbers.empty() && rnd.Chance(2))
            replaced = issuedNumbers[rnd.Below(int(issuedNumbers.size()))];
        const bool negative = rnd.Chance(2);
        const bool electronicOrder =
            QString(kTypes[typeIndex].name).contains(QStringLiteral("电子"));

        // One to four lines; parking items mostly in pairs of departments' habits.
        const int lines = 1 + rnd.Pick({55, 25, 12, 8});
        double total = 0;
        for (int l = 0; l < lines; ++l) {
            const Item& it = kItems[rnd.Pick({30, 12, 8, 8, 6, 2, 14, 8, 5, 3, 2, 2})];
            double amount = (1000 + rnd.Below(500000)) / 100.0;
            if (negative) amount = -amount;
            line.bindValue(0, note);
            line.bindValue(1, no);
            line.bindValue(2, QString::fromUtf8(it.code));
            line.bindValue(3, Money(amount).toDouble());
            line.bindValue(4, it.rate < 0
                                  ? QVariant(QMetaType::fromType<double>())
                                  : QVariant(Money(amount * it.rate / (1 + it.rate)).toDouble()));
            Run(line);
            total += Money(amount).toDouble();
            ++summary.lines;
        }

        QString payer;
        if (rnd.Chance(25)) {
            payer = QString::fromUtf8(kCompanies[rnd.Below(int(std::size(kCompanies)))]);
        } else {
            payer = QString::fromUtf8(kSurnames[rnd.Below(10)]) +
                    QString::fromUtf8(kGiven[rnd.Below(10)]);
            if (rnd.Chance(50)) payer += QString::fromUtf8(kGiven[rnd.Below(10)]);
        }
        QVariant address(QMetaType::fromType<QString>());
        if (!rnd.Chance(20))
            address = QStringLiteral("%1幢%2室").arg(1 + rnd.Below(30)).arg(101 + rnd.Below(2400));

        ticket.bindValue(0, no);
        ticket.bindValue(1, note);
        ticket.bindValue(2, issued);
        ticket.bindValue(3, paid);
        ticket.bindValue(4, voided);
        ticket.bindValue(5, Money(total).toDouble());
        ticket.bindValue(6,
                         QString::fromUtf8(kTicketMethods[rnd.Pick({30, 25, 10, 12, 10, 10, 3})]));
        ticket.bindValue(7, payer);
        ticket.bindValue(8, address);
        ticket.bindValue(9, replaced);
        ticket.bindValue(10, QString::fromUtf8(dept.code));
        ticket.bindValue(11, preissued);
        ticket.bindValue(12, electronicOrder
                                 ? QVariant(QStringLiteral("WX%1").arg(seed * 1000003 + t))
                                 : QVariant(QMetaType::fromType<QString>()));
        Run(ticket);
        if (issuedNumbers.size() < 5000) issuedNumbers.push_back(no);
        ++summary.tickets;
    }
    summary.largestDepartment = QString::fromUtf8(kDepartments[0].code);
    return summary;
}

}  // namespace

DemoSummary WriteDemoDatabase(const QString& file, int tickets, quint64 seed) {
    // Written under a temporary name beside the target and moved over it when
    // complete; removed on every failure and on SIGINT, SIGTERM and SIGHUP.
    StagedOutput out(file);
    const QString temp = out.StagingPath();
    const QString connection = QStringLiteral("demo-writer");
    DemoSummary summary;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(temp);
        try {
            if (!db.open()) throw RuntimeError(long(ErrorCode::ProviderError), db.lastError().text());
            QSqlQuery q(db);
            Exec(q, QStringLiteral("PRAGMA journal_mode=OFF"));
            Exec(q, QStringLiteral("PRAGMA synchronous=OFF"));
            db.transaction();
            for (const QString& s : EmbeddedSchema::TableStatements()) Exec(q, s);
            WriteSettings(q);
            summary = WriteTickets(db, tickets, seed);
            for (const QString& s : EmbeddedSchema::IndexStatements()) Exec(q, s);
            if (!db.commit()) throw RuntimeError(long(ErrorCode::ProviderError), db.lastError().text());
            Exec(q, QStringLiteral("ANALYZE"));
            db.close();
        } catch (...) {
            db.close();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(connection);
            throw;
        }
    }
    QSqlDatabase::removeDatabase(connection);
    out.Commit();
    return summary;
}

}  // namespace yunqi
