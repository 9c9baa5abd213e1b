#include "cli/BatchCommand.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QTextStream>
#include <QThread>
#include <cstdio>
#include <optional>
#include <unistd.h>

#include "cli/BatchJobs.h"
#include "cli/GridCsv.h"
#include "cli/StatementSession.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

constexpr int kDone = 0, kSomeFailed = 1, kBadArguments = 2, kInterrupted = 130;
const char kUsage[] =
    "usage: yunqi-statement batch [--database FILE] --month YYYY-MM --out DIR [--dept CODE]... "
    "[--report NAME]... [--ratio ITEMCODE=DEV/PROP]... [--csv] [--jobs N] [--force] [--quiet]\n";
const QString kSummaryHeader = QStringLiteral("dept,report,status,rows,seconds,file");

void Say(const QString& text) {
    QTextStream(stderr) << "yunqi-statement: batch: " << text << "\n";
}

int BadArguments(const QString& problem) {
    Say(problem);
    QTextStream(stderr) << kUsage;
    return kBadArguments;
}

struct BatchOptions {
    QString database;
    QDate month;  // its first day
    QString out;
    QStringList depts;
    QStringList reports;
    QStringList ratios;
    bool csv = false;
    int jobs = 0;
    bool force = false;
    bool quiet = false;
};

std::optional<BatchOptions> Parse(const QStringList& args, QString& problem) {
    BatchOptions o;
    o.jobs = std::max(1, QThread::idealThreadCount());
    bool haveMonth = false, haveJobs = false;
    static const QRegularExpression monthShape(QStringLiteral("^(\\d{4})-(\\d{2})$"));
    static const QRegularExpression ratioShape(QStringLiteral("^[^=]+=[^/]+/.+$"));
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        const bool flag = a == QLatin1String("--csv") || a == QLatin1String("--force") ||
                          a == QLatin1String("--quiet");
        if (flag) {
            (a == QLatin1String("--csv") ? o.csv : a == QLatin1String("--force") ? o.force
                                                                                  : o.quiet) = true;
            continue;
        }
        if (!a.startsWith(QLatin1String("--"))) {
            problem = QStringLiteral("unexpected argument ") + a;
            return std::nullopt;
        }
        if (i + 1 >= args.size()) {
            problem = a + QStringLiteral(" needs a value");
            return std::nullopt;
        }
        const QString v = args[++i];
        if (a == QLatin1String("--database") || a == QLatin1String("--out")) {
            QString& target = a == QLatin1String("--database") ? o.database : o.out;
            if (!target.isEmpty() || v.isEmpty()) {
                problem = a + (v.isEmpty() ? QStringLiteral(" needs a value")
                                           : QStringLiteral(" is given twice"));
                return std::nullopt;
            }
            target = v;
        } else if (a == QLatin1String("--month")) {
            const auto m = monthShape.match(v);
            const QDate first = m.hasMatch() ? QDate(m.captured(1).toInt(), m.captured(2).toInt(), 1)
                                             : QDate();
            if (haveMonth || !first.isValid()) {
                problem = haveMonth ? QStringLiteral("--month is given twice")
                                    : QStringLiteral("--month wants YYYY-MM: ") + v;
                return std::nullopt;
            }
            o.month = first;
            haveMonth = true;
        } else if (a == QLatin1String("--dept")) {
            o.depts << v;
        } else if (a == QLatin1String("--report")) {
            if (!FindReport(v)) {
                problem = QStringLiteral("no report named ") + v;
                return std::nullopt;
            }
            o.reports << v;
        } else if (a == QLatin1String("--ratio")) {
            if (!ratioShape.match(v).hasMatch()) {
                problem = QStringLiteral("--ratio wants ITEMCODE=DEV/PROP: ") + v;
                return std::nullopt;
            }
            o.ratios << v;
        } else if (a == QLatin1String("--jobs")) {
            bool ok = false;
            o.jobs = v.toInt(&ok);
            if (haveJobs || !ok || o.jobs < 1 || o.jobs > 256) {
                problem = QStringLiteral("--jobs wants a number from 1 to 256: ") + v;
                return std::nullopt;
            }
            haveJobs = true;
        } else {
            problem = QStringLiteral("unknown option ") + a;
            return std::nullopt;
        }
    }
    if (!haveMonth || o.out.isEmpty()) {
        problem = !haveMonth ? QStringLiteral("--month is required") : QStringLiteral("--out is required");
        return std::nullopt;
    }
    return o;
}

// The files a batch writes: summary.csv, and per department folder only the
// workbooks and CSV files of the reports.
bool HoldsOnlyBatchFiles(const QDir& dir) {
    QStringList ours;
    for (const ReportDefinition* r : AllReports())
        ours << r->command + QStringLiteral(".xlsx") << r->command + QStringLiteral(".csv");
    for (const QFileInfo& entry :
         dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        if (entry.isFile() && entry.fileName() == QLatin1String("summary.csv")) continue;
        if (!entry.isDir() || entry.isSymLink()) return false;
        for (const QFileInfo& f : QDir(entry.filePath())
                                      .entryInfoList(QDir::AllEntries | QDir::Hidden |
                                                     QDir::NoDotAndDotDot))
            if (!f.isFile() || f.isSymLink() || !ours.contains(f.fileName())) return false;
    }
    return true;
}

QString StatusText(BatchJob::Status s) {
    switch (s) {
    case BatchJob::Status::Ok: return QStringLiteral("ok");
    case BatchJob::Status::Empty: return QStringLiteral("empty");
    default: return QStringLiteral("failed");
    }
}

}  // namespace

QString FileNameOfCode(const QString& code) {
    static const QString unsafe = QStringLiteral("/\\:*?\"<>|%");
    QString name;
    for (const QChar ch : code) {
        if (ch.unicode() < 0x20 || ch.unicode() == 0x7f || unsafe.contains(ch)) {
            for (const char byte : QString(ch).toUtf8())
                name += QStringLiteral("%%1").arg(uchar(byte), 2, 16, QLatin1Char('0')).toUpper();
        } else {
            name += ch;
        }
    }
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        name.replace(QLatin1Char('.'), QStringLiteral("%2E"));
    return name.isEmpty() ? QStringLiteral("%00") : name;
}

int RunBatch(const QStringList& args) {
    QString problem;
    const auto parsed = Parse(args, problem);
    if (!parsed) return BadArguments(problem);
    const BatchOptions& o = *parsed;

    // The departments in the list's order, as many as were asked for.
    QStringList entries;
    try {
        auto session = OpenStatementSession(o.database);
        entries = Conditions::LoadDepartments(*session);
    } catch (const RuntimeError& e) {
        Say(QStringLiteral("error ") + QString::number(e.number()) + QStringLiteral(": ") +
            e.description());
        return kSomeFailed;
    }
    for (const QString& code : o.depts) {
        const bool listed = std::any_of(entries.begin(), entries.end(), [&](const QString& e) {
            return Conditions::DeptCodeOf(e) == code;
        });
        if (!listed) return BadArguments(QStringLiteral("no department with code ") + code +
                                         QStringLiteral(" in the list"));
    }

    QDir out(o.out);
    if (out.exists() && !o.force && !HoldsOnlyBatchFiles(out))
        return BadArguments(o.out + QStringLiteral(" holds files of something else; --force to "
                                                   "write into it anyway"));
    if (!QDir().mkpath(out.absolutePath())) {
        Say(o.out + QStringLiteral(": cannot make the folder"));
        return kSomeFailed;
    }

    const QDate first = o.month, last = first.addMonths(1).addDays(-1);
    const QString program = QCoreApplication::applicationFilePath();
    std::vector<BatchJob> jobs;
    QStringList seen;
    for (const QString& entry : entries) {
        const QString code = Conditions::DeptCodeOf(entry);
        if ((!o.depts.isEmpty() && !o.depts.contains(code)) || seen.contains(code)) continue;
        seen << code;  // the first entry of a code, as --dept chooses it
        const QString folder = FileNameOfCode(code);
        if (!out.mkpath(folder)) {
            Say(out.filePath(folder) + QStringLiteral(": cannot make the folder"));
            return kSomeFailed;
        }
        for (const ReportDefinition* report : AllReports()) {
            if (!o.reports.isEmpty() && !o.reports.contains(report->command)) continue;
            BatchJob job;
            job.dept = code;
            job.report = report->command;
            job.label = code + QLatin1Char(' ') + Conditions::DepartmentOf(entry).trimmed() +
                        QLatin1Char(' ') + report->texts.caption;
            job.relativeFile = folder + QLatin1Char('/') + report->command + QStringLiteral(".xlsx");
            job.args << report->command;
            if (!o.database.isEmpty()) job.args << QStringLiteral("--database") << o.database;
            job.args << QStringLiteral("--dept") << code;
            if (report->conditions == ConditionsKind::YearMonths) {
                job.args << QStringLiteral("--year") << QString::number(first.year())
                         << QStringLiteral("--months")
                         << QStringLiteral("01-") + first.toString(QStringLiteral("MM"));
            } else {
                job.args << QStringLiteral("--from") << first.toString(Qt::ISODate)
                         << QStringLiteral("--to") << last.toString(Qt::ISODate);
                for (const QString& ratio : o.ratios) job.args << QStringLiteral("--ratio") << ratio;
                if (!o.ratios.isEmpty()) job.args << QStringLiteral("--ratio-if-present");
            }
            job.args << QStringLiteral("--xlsx") << out.filePath(job.relativeFile);
            if (o.csv) job.csvPath = out.filePath(folder + QLatin1Char('/') + report->command +
                                                  QStringLiteral(".csv"));
            job.args << QStringLiteral("--csv") << (o.csv ? job.csvPath : QStringLiteral("-"));
            jobs.push_back(std::move(job));
        }
    }

    const bool terminal = ::isatty(fileno(stderr));
    QTextStream err(stderr);
    const QLocale grouping(QLocale::English);
    const int total = int(jobs.size());
    const bool completed = RunBatchJobs(jobs, o.jobs, program, [&](const BatchJob& job, int done) {
        if (job.status == BatchJob::Status::Failed)
            Say(job.dept + QLatin1Char(' ') + job.report + QStringLiteral(": ") + job.message);
        if (o.quiet) return;
        const QString line = QStringLiteral("[%1/%2] %3 ").arg(done).arg(total).arg(job.label) +
                             (job.status == BatchJob::Status::Ok
                                  ? grouping.toString(job.rows) + QStringLiteral(" rows")
                                  : StatusText(job.status));
        if (terminal)
            err << "\r\033[K" << line << (done == total ? "\n" : "") << Qt::flush;
        else
            err << line << "\n" << Qt::flush;
    });
    if (!completed) {
        if (terminal && !o.quiet) err << "\n";
        Say(QStringLiteral("interrupted"));
        return kInterrupted;
    }

    QString summary = kSummaryHeader + QLatin1Char('\n');
    bool failed = false;
    for (const BatchJob& job : jobs) {
        failed = failed || job.status == BatchJob::Status::Failed;
        const bool ok = job.status == BatchJob::Status::Ok;
        summary += CsvField(job.dept) + QLatin1Char(',') + job.report + QLatin1Char(',') +
                   StatusText(job.status) + QLatin1Char(',') + QString::number(ok ? job.rows : 0) +
                   QLatin1Char(',') + QString::number(job.seconds, 'f', 3) + QLatin1Char(',') +
                   (ok ? CsvField(job.relativeFile) : QString()) + QLatin1Char('\n');
    }
    try {
        WriteOutputFile(out.filePath(QStringLiteral("summary.csv")), summary.toUtf8());
    } catch (const RuntimeError& e) {
        Say(e.description());
        return kSomeFailed;
    }
    return failed ? kSomeFailed : kDone;
}

}  // namespace yunqi
