#include "cli/BatchCommand.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QTextStream>
#include <cstdio>
#include <unistd.h>

#include "cli/BatchJobs.h"
#include "cli/BatchOptions.h"
#include "cli/GridCsv.h"
#include "cli/StatementCli.h"
#include "cli/StatementSession.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "reports/Reports.h"

namespace yunqi {

namespace {

constexpr int kDone = 0, kSomeFailed = 1, kInterrupted = 130;
const QString kSummaryHeader = QStringLiteral("dept,report,status,rows,seconds,file");

void Say(const QString& text) {
    QTextStream(stderr) << "yunqi-statement: batch: " << text << "\n";
}

int BadArguments(const QString& problem) {
    return CommandArgumentError(QStringLiteral("batch"), problem);
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
    const auto parsed = ParseBatchOptions(args, problem);
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
    if (problem = UnlistedDepartment(o, entries); !problem.isEmpty()) return BadArguments(problem);

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
