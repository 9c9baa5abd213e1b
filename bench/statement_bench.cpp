// Wall time of a statement on a large demo ledger, beside the time the
// sqlite3 shell takes for the same SQL texts alone, and the time of ShowPage
// on a long statement of a paged report. A monthly report runs the twelve
// months of the year.
//   statement_bench [DB] [--report NAME] [--tickets N] [--year YYYY | --from D --to D]
// Without DB a demo ledger of N tickets (default 200000) is made in /tmp.
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <clocale>
#include <cstdio>

#include "cli/DemoDatabase.h"
#include "core/RuntimeError.h"
#include "db/SqlDialect.h"
#include "frame/Conditions.h"
#include "frame/SplitRatios.h"
#include "reports/Reports.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

struct Timed {
    double statementMs = 0;
    int rows = 0;
    long error = 0;  // the run-time error that ended the statement, if one did
    QStringList sql;
};

Timed RunOnce(const ReportDefinition& report, const QString& db, const StatementConditions& k) {
    auto session = DatabaseSession::OpenEmbedded(db);
    Timed t;
    session->SetSqlLog([&](const QString& s) { t.sql << s; });
    FlexGrid statementGrid, ratios = SplitRatios::NewGrid();
    QElapsedTimer clock;
    if (report.conditions == ConditionsKind::YearMonths) {
        auto statement = MakeStatement<MonthlyStatement>(report, *session);
        statement->LoadInvoiceTypes();
        clock.start();
        statement->ExtractFeeItems(k, statementGrid);
        statement->RunReconciliation(k, statementGrid);
        t.statementMs = clock.nsecsElapsed() / 1e6;
        t.rows = statementGrid.Rows() - 2;
        t.sql.removeFirst();  // the types, read at load
        return t;
    }
    auto statement = MakeStatement<PagedStatement>(report, *session);
    clock.start();
    statement->ExtractFeeItems(k, ratios, statementGrid);
    statement->BuildGridHeader(statementGrid, ratios);
    try {
        statement->RunStatistics(k, ratios, 30);
    } catch (const RuntimeError& e) {
        // The parking statement's closing loops stop past 32,767 rows, after
        // the whole result has been read.
        t.error = e.number();
    }
    t.statementMs = clock.nsecsElapsed() / 1e6;
    t.rows = statement->UpperBound();
    return t;
}

// The sqlite3 shell running the texts as the engine receives them.
double ShellMs(const QString& db, const QStringList& sql, const QString& scriptPath) {
    QFile script(scriptPath);
    script.open(QIODevice::WriteOnly | QIODevice::Truncate);
    for (const QString& s : sql) script.write((AdaptToSQLite(s) + ";\n").toUtf8());
    script.close();
    QProcess shell;
    shell.setStandardInputFile(scriptPath);
    shell.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    shell.start(QStringLiteral("sqlite3"), {QStringLiteral("-batch"), db});
    shell.waitForFinished(-1);
    return clock.nsecsElapsed() / 1e6;
}

QString LargestDepartment(DatabaseSession& session) {
    Recordset rs = session.Open(QStringLiteral(
        "Select 开票部门编号, count(*) As n From 票据 Group by 开票部门编号 Order by n desc"));
    return rs.Value(0).toString();
}

QString SiteCode(DatabaseSession& session, const QString& dept) {
    for (const QString& entry : Conditions::LoadDepartments(session))
        if (Conditions::DeptCodeOf(entry) == dept) return Conditions::SiteCodeOf(entry);
    return QString();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QStringList args = app.arguments().mid(1);
    int tickets = 200000, year = 2024;
    QDate from, to;
    QString db, command = QStringLiteral("invoice");
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--report" && i + 1 < args.size())
            command = args[++i];
        else if (args[i] == "--tickets" && i + 1 < args.size())
            tickets = args[++i].toInt();
        else if (args[i] == "--year" && i + 1 < args.size())
            year = args[++i].toInt();
        else if (args[i] == "--from" && i + 1 < args.size())
            from = QDate::fromString(args[++i], Qt::ISODate);
        else if (args[i] == "--to" && i + 1 < args.size())
            to = QDate::fromString(args[++i], Qt::ISODate);
        else
            db = args[i];
    }
    const ReportDefinition* report = FindReport(command);
    if (!report) {
        out << "no report " << command << "\n";
        return 2;
    }
    QTemporaryDir tmp;
    if (db.isEmpty()) {
        db = QDir::temp().filePath(QStringLiteral("yunqi-bench-%1.sqlite").arg(tickets));
        if (!QFile::exists(db)) {
            QElapsedTimer clock;
            clock.start();
            WriteDemoDatabase(db, tickets, 1);
            out << "made " << db << " with " << tickets << " tickets in " << clock.elapsed()
                << " ms\n";
        }
    }

    auto session = DatabaseSession::OpenEmbedded(db);
    StatementConditions k;
    k.DeptCode = LargestDepartment(*session);
    k.InvoiceTypeList = Conditions::LoadInvoiceTypes(*session);
    k.From = from.isValid() ? from : QDate(year, 1, 1);
    k.To = to.isValid() ? to : QDate(year, 12, 31);
    k.Year = QString::number(year);
    k.FromMonth = QStringLiteral("01");
    k.ToMonth = QStringLiteral("12");
    k.SiteCode = SiteCode(*session, k.DeptCode);
    out << command << ", department " << k.DeptCode << ", window " << k.From.toString(Qt::ISODate)
        << " to " << k.To.toString(Qt::ISODate) << "\n";

    RunOnce(*report, db, k);  // warm the page cache
    double best = 1e18, shellBest = 1e18;
    Timed t;
    for (int i = 0; i < 3; ++i) {
        t = RunOnce(*report, db, k);
        best = std::min(best, t.statementMs);
        shellBest = std::min(shellBest, ShellMs(db, t.sql, tmp.filePath("s.sql")));
    }
    out << "statement rows " << t.rows << " from " << t.sql.size() << " SQL texts";
    if (t.error) out << ", ended by run-time error " << t.error;
    out << "\n";
    out << QString::asprintf("statement (extraction + statistics): %.0f ms\n", best);
    out << QString::asprintf("sqlite3 shell, same texts: %.0f ms\n", shellBest);
    out << QString::asprintf("ratio to the shell: %.2f; own share: %.1f%%\n", best / shellBest,
                             100.0 * (best - shellBest) / best);
    {
        // What the session adds to each text before the engine sees it.
        QElapsedTimer clock;
        clock.start();
        qsizetype chars = 0;
        for (const QString& s : t.sql) chars += AdaptToSQLite(s).size();
        out << QString::asprintf("dialect rewrite of the %lld texts (%lld characters): %.2f ms\n",
                                 qlonglong(t.sql.size()), qlonglong(chars),
                                 clock.nsecsElapsed() / 1e6);
    }

    if (report->conditions != ConditionsKind::DateWindow) return 0;

    // ShowPage on a long statement: every year of the department.
    k.From = QDate(2000, 1, 1);
    k.To = QDate(2099, 12, 31);
    auto statement = MakeStatement<PagedStatement>(*report, *session);
    FlexGrid statementGrid, ratios = SplitRatios::NewGrid();
    statement->ExtractFeeItems(k, ratios, statementGrid);
    statement->BuildGridHeader(statementGrid, ratios);
    try {
        if (!statement->RunStatistics(k, ratios, 30)) return 0;
    } catch (const RuntimeError& e) {
        out << "long statement ended by run-time error " << e.number() << "\n";
        return 0;
    }
    const int pages = statement->PageCount();
    out << "long statement rows " << statement->UpperBound() << ", pages of 30: " << pages << "\n";
    EstimatedTextMeasure measure;
    for (int page : {1, pages / 2, pages}) {
        QElapsedTimer clock;
        clock.start();
        const int repeat = 200;
        for (int i = 0; i < repeat; ++i) statement->ShowPage(statementGrid, page, 30, measure);
        out << QString::asprintf("ShowPage page %d: %.3f ms\n", page,
                                 clock.nsecsElapsed() / 1e6 / repeat);
    }
    return 0;
}
