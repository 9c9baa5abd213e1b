#include "cli/DemoDatabase.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <set>

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
    int Pick(std::initializer_list<int> weights) { return PickOf(weights); }
    template <class Weights>
    int PickOf(const Weights& weights) {
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
    int fixed;   // 定额
    int weight;  // share of the counter's visits
};

enum TypeIndex { kSpecial, kOrdinary, kElectronic, kReceipt, kFixed, kParkingFixed };

// The reconciliation sets 专用 and 普通 invoices beside what finance took in:
// receipts carry only deposits (no tax rate, so on neither side) and the
// electronic invoices only the gate's parking (on no tax-control disk), so
// that an office's books agree.
const TicketType kTypes[] = {
    {"01", "增值税专用发票", 0, 12}, {"02", "增值税普通发票", 0, 46},
    {"03", "增值税电子发票", 0, 18}, {"04", "收据", 0, 10},
    {"05", "定额发票", 1, 8},        {"06", "停车定额票", 1, 6},
};

struct Item {
    const char* code;
    const char* name;
    double rate;  // < 0: Null
    const char* category;
    int weight;  // on a line of a paper VAT invoice
    // Set up on the sites' tax-control disks. Temporary parking is paid at the
    // car park's gate, whose own platform issues the electronic invoices.
    bool onDisk;
};

const Item kItems[] = {
    {"001", "物业服务费", 0.06, "物业收费", 30, true},
    {"002", "公共能耗费", 0.06, "物业收费", 12, true},
    {"003", "水费", 0.03, "水电", 8, true},
    {"004", "电费", 0.13, "水电", 8, true},
    {"005", "垃圾清运费", 0.06, "物业收费", 6, true},
    {"006", "装修押金", -1, "代收代付", 0, true},  // on receipts only
    {"007", "地下停车费", 0.05, "停车收费", 14, true},
    {"008", "临时停车费(含税5%)", 0.05, "临时停车", 0, false},
    {"009", "车位管理费", 0.06, "停车管理", 5, true},
    {"010", "有偿服务费", 0.06, "服务收入", 3, true},
    {"011", "会所服务费", 0.06, "服务收入", 2, true},
    {"012", "广告位租金", 0.09, "租赁收入", 2, true},
};
enum ItemIndex { kPropertyFee = 0, kDeposit = 5, kGateParking = 7, kServiceFee = 9 };

const char* const kListedMethods[] = {"现金", "微信支付", "支付宝", "银行转账", "POS刷卡"};
// What tickets carry: 微信 and 支票 are not in the list.
const char* const kTicketMethods[] = {"现金",     "微信支付", "微信", "支付宝",
                                      "银行转账", "POS刷卡",  "支票"};

const char* const kSurnames[] = {"王", "李", "张", "刘", "陈", "杨", "赵", "黄", "周", "吴"};
const char* const kGiven[] = {"伟", "芳", "娜", "敏", "静", "强", "磊", "洋", "艳", "军"};
const char* const kCompanies[] = {"云栖科技有限公司", "杭州明远贸易有限公司",
                                  "江南餐饮管理有限公司", "青禾教育咨询有限公司"};

void Exec(QSqlQuery& q, const QString& sql) {
    if (!q.exec(sql))
        throw RuntimeError(long(ErrorCode::ProviderError),
                           q.lastError().text() + QStringLiteral(": ") + sql);
}

void Run(QSqlQuery& q) {
    if (!q.exec()) throw RuntimeError(long(ErrorCode::ProviderError), q.lastError().text());
}

QString Money(double v) { return QString::number(std::round(v * 100) / 100, 'f', 2); }

QString RateText(double rate) { return rate < 0 ? QStringLiteral("NULL") : QString::number(rate); }

void WriteSettings(QSqlQuery& q) {
    for (const Department& d : kDepartments) {
        Exec(q, QStringLiteral("INSERT INTO 职能部门new VALUES ('%1','%2',%3)")
                    .arg(d.code, d.name,
                         d.ended ? QStringLiteral("'%1'").arg(d.ended) : QStringLiteral("NULL")));
        Exec(q, QStringLiteral("INSERT INTO 设置管理处 VALUES ('%1','%2','%3')")
                    .arg(d.code, d.site, d.siteName));
        for (const Item& it : kItems)
            if (it.onDisk)
                Exec(q, QStringLiteral("INSERT INTO 税控盘收费项目设置 VALUES ('%1',%2,'%3')")
                            .arg(it.code, RateText(it.rate), d.site));
    }
    for (const TicketType& t : kTypes)
        Exec(q, QStringLiteral("INSERT INTO 票据类型 VALUES ('%1','%2',%3)")
                    .arg(t.code, t.name)
                    .arg(t.fixed));
    for (const Item& it : kItems)
        Exec(q, QStringLiteral("INSERT INTO setupsfxm VALUES ('%1','%2',%3,'%4','%2')")
                    .arg(it.code, it.name, RateText(it.rate), it.category));
    for (const char* m : kListedMethods)
        Exec(q, QStringLiteral("INSERT INTO 收款方式列表 VALUES ('%1')").arg(m));
    Exec(q, QStringLiteral("INSERT INTO 岗位权限设置 VALUES (1,'G01','P01',1,'报表'),"
                           "(2,'G02','P02',1,'报表'),(3,'G01','P03',0,'报表')"));
    Exec(q, QStringLiteral(
                "INSERT INTO GroupPrivilege VALUES ('G01','统计报表',1),"
                "('G01','增值税开票明细表',1),('G01','增值税预开票明细表',1),('G02','统计报表',1),"
                "('G02','停车费明细表',1)"));
}

const QDate kFirstDay(2022, 1, 1);
constexpr int kOpens = 8 * 3600, kOpenSeconds = 11 * 3600;  // the counter, 8:00 to 19:00

QString Stamp(int day, int second) {
    return kFirstDay.addDays(day).toString(QStringLiteral("yyyy-MM-dd")) +
           QStringLiteral(" %1:%2:%3")
               .arg(second / 3600, 2, 10, QLatin1Char('0'))
               .arg(second / 60 % 60, 2, 10, QLatin1Char('0'))
               .arg(second % 60, 2, 10, QLatin1Char('0'));
}

// One household (or company) at the counter: several tickets of one type,
// issued and paid together.
struct Visit {
    int day;
    int second;
    quint8 dept;
    quint8 type;
    quint8 tickets;
    bool misfiled;  // a receipt written for a taxed fee
};

bool IsPaperVat(int type) { return type == kSpecial || type == kOrdinary; }

template <class Row, std::size_t N>
std::vector<int> WeightsOf(const Row (&rows)[N]) {
    std::vector<int> weights;
    for (const Row& r : rows) weights.push_back(r.weight);
    return weights;
}

// Visits in the order of the counter's clock, so that the numbers of a book
// run with time.
std::vector<Visit> PlanVisits(int tickets, Random& rnd) {
    const int days = int(kFirstDay.daysTo(QDate(2025, 12, 31))) + 1;
    const std::vector<int> deptWeights = WeightsOf(kDepartments), typeWeights = WeightsOf(kTypes);
    std::vector<Visit> visits;
    visits.reserve(std::size_t(tickets) / 2 + 1);
    for (int planned = 0; planned < tickets;) {
        Visit v{};
        v.dept = quint8(rnd.PickOf(deptWeights));
        // The terminated department stopped issuing in mid-2022.
        v.day = rnd.Below(kDepartments[v.dept].ended ? 180 : days);
        v.second = kOpens + rnd.Below(kOpenSeconds);
        v.type = quint8(rnd.PickOf(typeWeights));
        int n = 1;
        if (IsPaperVat(v.type)) n = 1 + rnd.Pick({40, 30, 20, 10});
        if (v.type == kFixed || v.type == kParkingFixed) n = 1 + rnd.Pick({50, 30, 20});
        v.tickets = quint8(std::min(n, tickets - planned));
        planned += v.tickets;
        visits.push_back(v);
    }
    std::stable_sort(visits.begin(), visits.end(), [](const Visit& a, const Visit& b) {
        return a.day != b.day ? a.day < b.day : a.second < b.second;
    });

    // Every department takes a deposit each month it works: with a receipt in
    // the month, the reconciliation shows every rate finance took in.
    const auto month = [](int day) {
        const QDate d = kFirstDay.addDays(day);
        return d.year() * 12 + d.month();
    };
    std::set<std::pair<int, int>> withReceipt;
    for (const Visit& v : visits)
        if (v.type == kReceipt) withReceipt.insert({v.dept, month(v.day)});
    for (Visit& v : visits)
        if (withReceipt.insert({v.dept, month(v.day)}).second) v.type = kReceipt;

    // A receipt written for a taxed fee: 云栖花园's books for March 2024 do
    // not agree, as the reconciliation is there to show.
    for (Visit& v : visits)
        if (v.dept == 1 && month(v.day) == 2024 * 12 + 3 && v.type != kReceipt) {
            v.type = kReceipt;
            v.misfiled = true;
            break;
        }
    return visits;
}

// The books of one ticket type: each stock-in note takes the next range of
// the type's running number and goes to one department, which uses it up
// before it opens the next. A number is the type's code and its running
// number, six digits or more, so that it is unique across the ledger, as the
// statements that join tickets by number alone expect.
class Books {
  public:
    static constexpr int kBook = 500;

    explicit Books(QSqlDatabase& db)
        : open_(std::size(kDepartments) * std::size(kTypes)),
          running_(std::size(kTypes)),
          notes_(std::size(kTypes)),
          insert_(db) {
        insert_.prepare(QStringLiteral("INSERT INTO 票据入库单 VALUES (?,?)"));
    }

    // The note and number of the department's next ticket of the type.
    std::pair<QString, QString> Next(int dept, int type) {
        Open& o = open_[std::size_t(dept) * std::size(kTypes) + type];
        if (o.next == o.end) {
            o.note = QStringLiteral("RK%1-%2")
                         .arg(QLatin1String(kTypes[type].code))
                         .arg(++notes_[type], 4, 10, QLatin1Char('0'));
            insert_.bindValue(0, o.note);
            insert_.bindValue(1, QString::fromLatin1(kTypes[type].code));
            Run(insert_);
            o.next = running_[type] + 1;
            running_[type] += kBook;
            o.end = o.next + kBook;
        }
        return {o.note, QLatin1String(kTypes[type].code) +
                            QStringLiteral("%1").arg(o.next++, 6, 10, QLatin1Char('0'))};
    }

  private:
    struct Open {
        QString note;
        qint64 next = 0, end = 0;
    };
    std::vector<Open> open_;
    std::vector<qint64> running_;
    std::vector<int> notes_;
    QSqlQuery insert_;
};

QString Payer(int type, Random& rnd) {
    // Special invoices are made out to companies.
    if (type == kSpecial || rnd.Chance(25))
        return QString::fromUtf8(kCompanies[rnd.Below(int(std::size(kCompanies)))]);
    QString payer =
        QString::fromUtf8(kSurnames[rnd.Below(10)]) + QString::fromUtf8(kGiven[rnd.Below(10)]);
    if (rnd.Chance(50)) payer += QString::fromUtf8(kGiven[rnd.Below(10)]);
    return payer;
}

DemoSummary WriteTickets(QSqlDatabase& db, int tickets, quint64 seed) {
    Random rnd(seed);
    const std::vector<Visit> visits = PlanVisits(tickets, rnd);
    Books books(db);
    QSqlQuery ticket(db), line(db);
    ticket.prepare(QStringLiteral("INSERT INTO 票据 VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?)"));
    line.prepare(QStringLiteral("INSERT INTO 票据开票数据 VALUES (?,?,?,?,?)"));
    const QVariant nullText(QMetaType::fromType<QString>());
    const QVariant nullDouble(QMetaType::fromType<double>());
    const std::vector<int> itemWeights = WeightsOf(kItems);

    std::vector<QString> recent;  // numbers a new ticket may replace
    DemoSummary summary;
    int t = 0, visit = 0;
    for (const Visit& v : visits) {
        ++visit;
        const QString issued = Stamp(v.day, v.second);
        // Paid at the counter, or invoiced ahead and paid later, or not yet.
        const int payment = IsPaperVat(v.type) ? rnd.Pick({80, 11, 9}) : 0;
        QVariant paid = issued;
        if (payment == 1)
            paid = Stamp(v.day + 1 + rnd.Below(60), kOpens + rnd.Below(kOpenSeconds));
        else if (payment == 2)
            paid = nullText;
        const int method =
            v.type == kElectronic ? 1 + rnd.Below(3) : rnd.Pick({30, 25, 10, 12, 10, 10, 3});
        // Paid by scanning a code (微信支付, 微信, 支付宝): one order for the visit.
        QVariant order = nullText;
        if (payment != 2 && method >= 1 && method <= 3)
            order = QStringLiteral("WX%1").arg(seed * 1000003 + visit);
        const QString payer = Payer(v.type, rnd);
        QVariant address = nullText;
        if (!rnd.Chance(20))
            address = QStringLiteral("%1幢%2室").arg(1 + rnd.Below(30)).arg(101 + rnd.Below(2400));

        for (int k = 0; k < v.tickets; ++k, ++t) {
            const auto [note, no] = books.Next(v.dept, v.type);
            QVariant voided = nullText;
            // A deposit is refunded, never voided.
            if (v.type != kReceipt && rnd.Chance(3))
                voided = Stamp(v.day + rnd.Below(10), kOpens + rnd.Below(kOpenSeconds));
            QVariant replaced = nullText;
            if (!recent.empty() && rnd.Chance(2)) replaced = recent[rnd.Below(int(recent.size()))];
            const bool negative = IsPaperVat(v.type) && rnd.Chance(2);

            int lines = 1;
            if (IsPaperVat(v.type)) lines = 1 + rnd.Pick({55, 25, 12, 8});
            double total = 0;
            for (int l = 0; l < lines; ++l) {
                int item = 0;
                double amount = 0;
                switch (v.type) {
                    case kElectronic:
                        item = kGateParking;
                        amount = (500 + rnd.Below(20000)) / 100.0;
                        break;
                    case kReceipt:
                        item = v.misfiled && k == 0 ? kPropertyFee : kDeposit;
                        amount = (5 + rnd.Below(50)) * 100.0;
                        break;
                    case kFixed:
                        item = kServiceFee;
                        amount = std::array{10, 20, 50, 100}[rnd.Below(4)];
                        break;
                    case kParkingFixed:
                        item = kGateParking;
                        amount = std::array{5, 10, 20}[rnd.Below(3)];
                        break;
                    default:
                        item = rnd.PickOf(itemWeights);
                        amount = (1000 + rnd.Below(500000)) / 100.0;
                }
                const Item& it = kItems[item];
                if (negative) amount = -amount;
                line.bindValue(0, note);
                line.bindValue(1, no);
                line.bindValue(2, QString::fromUtf8(it.code));
                line.bindValue(3, Money(amount).toDouble());
                line.bindValue(
                    4, it.rate < 0 ? nullDouble
                                   : QVariant(Money(amount * it.rate / (1 + it.rate)).toDouble()));
                Run(line);
                total += Money(amount).toDouble();
                ++summary.lines;
            }

            ticket.bindValue(0, no);
            ticket.bindValue(1, note);
            ticket.bindValue(2, issued);
            ticket.bindValue(3, paid);
            ticket.bindValue(4, voided);
            ticket.bindValue(5, Money(total).toDouble());
            ticket.bindValue(6, QString::fromUtf8(kTicketMethods[method]));
            ticket.bindValue(7, payer);
            ticket.bindValue(8, address);
            ticket.bindValue(9, replaced);
            ticket.bindValue(10, QString::fromUtf8(kDepartments[v.dept].code));
            ticket.bindValue(11, payment == 0 ? 0 : 1);
            ticket.bindValue(12, order);
            Run(ticket);
            if (recent.size() < 64)
                recent.push_back(no);
            else
                recent[t % 64] = no;
            ++summary.tickets;
        }
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
            if (!db.open())
                throw RuntimeError(long(ErrorCode::ProviderError), db.lastError().text());
            QSqlQuery q(db);
            Exec(q, QStringLiteral("PRAGMA journal_mode=OFF"));
            Exec(q, QStringLiteral("PRAGMA synchronous=OFF"));
            db.transaction();
            for (const QString& s : EmbeddedSchema::TableStatements()) Exec(q, s);
            WriteSettings(q);
            summary = WriteTickets(db, tickets, seed);
            for (const QString& s : EmbeddedSchema::IndexStatements()) Exec(q, s);
            if (!db.commit())
                throw RuntimeError(long(ErrorCode::ProviderError), db.lastError().text());
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
