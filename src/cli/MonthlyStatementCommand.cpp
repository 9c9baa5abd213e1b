#include "cli/MonthlyStatementCommand.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTextStream>

#include "cli/GridCsv.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"
#include "frame/xlsx/XlsxWriter.h"

namespace yunqi {

namespace {

constexpr int kRows = 0, kNothing = 3, kBadArguments = 2, kFailure = 1;

void Say(const QString& text) { QTextStream(stderr) << "yunqi-statement: " << text << "\n"; }

struct MonthlyOptions {
    QString database, dept, year, fromMonth, toMonth, csv, xlsx, sqlLog;
};

// The year and months as the window's combos offer them.
std::optional<MonthlyOptions> Parse(const QStringList& args, QString& problem) {
    static const QRegularExpression year(QStringLiteral("^(20(1[6-9]|[2-4]\\d))$"));
    static const QRegularExpression months(QStringLiteral("^(0[1-9]|1[0-2])-(0[1-9]|1[0-2])$"));
    MonthlyOptions o;
    for (int i = 0; i < args.size(); ++i) {
        const QString& name = args[i];
        if (i + 1 >= args.size()) {
            problem = name + QStringLiteral(" needs a value");
            return std::nullopt;
        }
        const QString& value = args[++i];
        if (name == QLatin1String("--database")) {
            o.database = value;
        } else if (name == QLatin1String("--dept")) {
            o.dept = value;
        } else if (name == QLatin1String("--year")) {
            if (!year.match(value).hasMatch()) {
                problem = QStringLiteral("--year wants a year 2016 to 2049, not ") + value;
                return std::nullopt;
            }
            o.year = value;
        } else if (name == QLatin1String("--months")) {
            const auto m = months.match(value);
            if (!m.hasMatch()) {
                problem = QStringLiteral("--months wants MM-MM, 01 to 12, not ") + value;
                return std::nullopt;
            }
            o.fromMonth = m.captured(1);
            o.toMonth = m.captured(2);
        } else if (name == QLatin1String("--csv")) {
            o.csv = value;
        } else if (name == QLatin1String("--xlsx")) {
            o.xlsx = value;
        } else if (name == QLatin1String("--sql-log")) {
            o.sqlLog = value;
        } else {
            problem = QStringLiteral("unknown option ") + name;
            return std::nullopt;
        }
    }
    if (o.dept.isEmpty())
        problem = QStringLiteral("--dept is required");
    else if (o.year.isEmpty())
        problem = QStringLiteral("--year is required");
    else if (o.fromMonth.isEmpty())
        problem = QStringLiteral("--months is required");
    if (!problem.isEmpty()) return std::nullopt;
    return o;
}

bool WriteText(const QString& path, const QString& text) {
    if (path == QLatin1String("-")) {
        QFile out;
        return out.open(stdout, QIODevice::WriteOnly) && out.write(text.toUtf8()) >= 0;
    }
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text.toUtf8());
        if (file.commit()) return true;
    }
    Say(path + QStringLiteral(": ") + file.errorString());
    return false;
}

int Run(const ReportDefinition& report, const MonthlyOptions& o, const SessionOpener& openSession) {
    std::unique_ptr<DatabaseSession> session = openSession(o.database);
    std::unique_ptr<QFile> sqlLog;
    if (!o.sqlLog.isEmpty()) {
        sqlLog = std::make_unique<QFile>(o.sqlLog);
        if (!sqlLog->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            Say(o.sqlLog + QStringLiteral(": ") + sqlLog->errorString());
            return kFailure;
        }
        session->SetSqlLog([log = sqlLog.get()](const QString& sql) {
            log->write(
                (QString(sql).replace(QLatin1Char('\n'), QLatin1Char(' ')) + QLatin1Char('\n'))
                    .toUtf8());
        });
    }

    QString entry;
    for (const QString& e : Conditions::LoadDepartments(*session))
        if (Conditions::DeptCodeOf(e) == o.dept) {
            entry = e;
            break;
        }
    if (entry.isEmpty()) {
        Say(QStringLiteral("no department with code ") + o.dept + QStringLiteral(" in the list"));
        return kBadArguments;
    }
    if (!MonthsInOrder(o.fromMonth, o.toMonth)) {
        Say(QStringLiteral("截至月份不能小于开始月份,请重新选择!"));
        return kBadArguments;
    }

    std::unique_ptr<MonthlyStatement> statement = report.makeMonthly(*session);
    StatementConditions k;
    k.DeptCode = Conditions::DeptCodeOf(entry);
    k.SiteCode = Conditions::SiteCodeOf(entry);
    k.InvoiceTypeList = statement->LoadInvoiceTypes();
    k.Year = o.year;
    k.FromMonth = o.fromMonth;
    k.ToMonth = o.toMonth;

    FlexGrid grid1;
    statement->InitGridHeader(grid1);
    statement->ExtractFeeItems(k, grid1);
    if (statement->FeeItems().size() <= 1) {
        Say(report.texts.noFeeItemsText);
        return kNothing;
    }
    statement->RunReconciliation(k, grid1);
    if (sqlLog && !sqlLog->flush()) {
        Say(o.sqlLog + QStringLiteral(": ") + sqlLog->errorString());
        return kFailure;
    }
    // Like the window's export, nothing is written without a body row.
    if (grid1.Rows() <= 2) {
        Say(QStringLiteral("no rows"));
        return kNothing;
    }
    if (!o.csv.isEmpty() && !WriteText(o.csv, GridCsv(grid1))) return kFailure;
    if (!o.xlsx.isEmpty()) {
        SheetModel sheet;
        ExportFrame::ExportSteps steps(nullptr, AppDialogs());
        statement->WriteSheet(sheet, steps,
                              {grid1, statement->TitleCaption(entry, o.year), entry, k});
        WriteXlsx(sheet, o.xlsx);
    }
    return kRows;
}

}  // namespace

int RunMonthlyStatement(const ReportDefinition& report, const QStringList& args,
                        const SessionOpener& openSession) {
    QString problem;
    const auto options = Parse(args, problem);
    if (!options) {
        Say(problem);
        return kBadArguments;
    }
    try {
        return Run(report, *options, openSession);
    } catch (const RuntimeError& e) {
        Say(QStringLiteral("error ") + QString::number(e.number()) + QStringLiteral(": ") +
            e.description());
        return kFailure;
    }
}

}  // namespace yunqi
