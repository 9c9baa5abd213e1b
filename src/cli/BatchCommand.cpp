#include "cli/BatchCommand.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>

#include "cli/BatchFolder.h"
#include "cli/BatchJobs.h"
#include "cli/BatchMismatches.h"
#include "cli/BatchOptions.h"
#include "cli/BatchPlan.h"
#include "cli/BatchProgress.h"
#include "cli/BatchSummary.h"
#include "cli/StatementCli.h"
#include "cli/StatementSession.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"

namespace yunqi {

namespace {

constexpr int kDone = 0, kSomeFailed = 1, kInterrupted = 130;

int BadArguments(const QString& problem) {
    return CommandArgumentError(QStringLiteral("batch"), problem);
}

}  // namespace

int RunBatch(const QStringList& args) {
    QString problem;
    const auto parsed = ParseBatchOptions(args, problem);
    if (!parsed) return BadArguments(problem);
    const BatchOptions& o = *parsed;

    // The departments in the list's order, as many as were asked for.
    QStringList entries;
    try {
        auto session = OpenStatementSession(o.database);
        Trapped trapped;
        entries = Conditions::LoadDepartments(*session, &trapped);
        if (trapped) throw *trapped;
    } catch (const RuntimeError& e) {
        BatchSay(QStringLiteral("error ") + QString::number(e.number()) + QStringLiteral(": ") +
                 e.description());
        return kSomeFailed;
    }
    if (problem = UnlistedDepartment(o, entries); !problem.isEmpty()) return BadArguments(problem);
    if (problem = ForeignFolderProblem(o.out, o.force); !problem.isEmpty())
        return BadArguments(problem);

    BatchPlan plan = PlanBatch(o, entries);
    if (!MakeBatchFolders(o.out, plan.folders)) return kSomeFailed;

    BatchProgress progress(int(plan.jobs.size()), o.quiet);
    const bool completed =
        RunBatchJobs(plan.jobs, o.jobs, QCoreApplication::applicationFilePath(),
                     [&progress](const BatchJob& job, int done) { progress.Finished(job, done); });
    if (!completed) {
        progress.Interrupted();
        return kInterrupted;
    }
    try {
        WriteOutputFile(QDir(o.out).filePath(QStringLiteral("summary.csv")),
                        BatchSummary(plan.jobs).toUtf8());
        WriteOutputFile(QDir(o.out).filePath(QStringLiteral("mismatches.csv")),
                        MismatchesCsv(plan.jobs).toUtf8());
    } catch (const RuntimeError& e) {
        BatchSay(e.description());
        return kSomeFailed;
    }
    // The batch's verdict on the books; --quiet keeps it for when some disagree.
    const int disagreeing = DepartmentsNotReconciled(plan.jobs);
    if (disagreeing > 0 || !o.quiet)
        BatchSay(disagreeing == 1
                     ? QStringLiteral("1 department does not reconcile")
                     : QStringLiteral("%1 departments do not reconcile").arg(disagreeing));
    const bool failed = std::any_of(plan.jobs.begin(), plan.jobs.end(), [](const BatchJob& job) {
        return job.status == BatchJob::Status::Failed;
    });
    return failed ? kSomeFailed : kDone;
}

}  // namespace yunqi
