#include "cli/BatchCommand.h"

#include <QCoreApplication>
#include <QDir>
#include <QScopeGuard>
#include <algorithm>

#include "cli/BatchFolder.h"
#include "cli/BatchJobs.h"
#include "cli/BatchMismatches.h"
#include "cli/BatchOptions.h"
#include "cli/BatchPlan.h"
#include "cli/BatchProgress.h"
#include "cli/BatchSummary.h"
#include "cli/StatementSession.h"
#include "cli/TimeLimit.h"
#include "cli/os/Companions.h"
#include "cli/os/Interrupts.h"
#include "core/OutputFile.h"
#include "core/RuntimeError.h"
#include "frame/Conditions.h"

namespace yunqi {

namespace {

constexpr int kDone = 0, kSomeFailed = 1, kInterrupted = 130;

int BadArguments(const QString& problem) {
    return CommandArgumentError(QStringLiteral("batch"), BatchSpec(), problem);
}

// As many companions at a time as asked, or as the limit of open files allows.
int CompanionsAtOnce(const BatchOptions& o) {
    long limit = 0;
    const int allowed = CompanionsTheFileLimitAllows(&limit);
    if (o.jobs <= allowed) return o.jobs;
    if (!o.quiet)
        BatchSay(QStringLiteral("%1 statements at a time, not %2: the limit of open files is %3")
                     .arg(allowed)
                     .arg(o.jobs)
                     .arg(limit));
    return allowed;
}

// A department folder that can't be made fails its statements, not the batch.
void MakeDepartmentFolders(const BatchStaging& staging, BatchPlan& plan) {
    for (const QString& folder : plan.folders) {
        const QString problem = staging.MakeFolder(folder);
        if (problem.isEmpty()) continue;
        for (BatchJob& job : plan.jobs)
            if (job.relativeFile.section(QLatin1Char('/'), 0, 0) == folder) {
                job.status = BatchJob::Status::Failed;
                job.message = problem;
            }
    }
}

// A batch stopped by its time limit says so, with the limit's status.
int Interrupted(BatchProgress& progress, const TimeLimit& limit) {
    if (!limit.Reached()) {
        progress.Interrupted(QStringLiteral("interrupted"));
        return kInterrupted;
    }
    progress.Interrupted(TimeLimitText(limit.Seconds()));
    return kExitTimeLimit;
}

}  // namespace

int RunBatch(const QStringList& args) {
    QString problem;
    const auto parsed = ParseBatchOptions(args, problem);
    if (!parsed) return BadArguments(problem);
    const BatchOptions& o = *parsed;
    // Until the batch can stop as an interrupt stops it, the limit ends the
    // process: nothing is made yet, and the server may never answer.
    TimeLimit limit(o.timeout, QStringLiteral("yunqi-statement: batch: "));

    // The departments in the list's order, as many as were asked for.
    QStringList entries;
    try {
        auto session = OpenStatementSession(o.database);
        Trapped trapped;
        entries = Conditions::LoadDepartments(*session, &trapped);
        if (trapped) throw *trapped;
    } catch (const RuntimeError& error) {
        const RuntimeError e = WithLedgerCause(error, o.database);
        BatchSay(e.NumberedText());
        return kSomeFailed;
    }
    if (problem = UnlistedDepartment(o, entries); !problem.isEmpty()) return BadArguments(problem);
    if (problem = ForeignFolderProblem(o.out, o.force); !problem.isEmpty())
        return BadArguments(problem);

    // From here on an interrupt removes what the batch made, and the output
    // folder stays as it was.
    InterruptWatch watch;
    limit.EndBy([&watch] { watch.Request(); });
    const auto limitEnded = qScopeGuard([&limit] { limit.Stop(); });
    BatchStaging staging(o.out);
    if (!staging.Make()) return kSomeFailed;
    BatchOptions staged = o;
    staged.out = staging.Path();
    BatchPlan plan = PlanBatch(staged, entries);
    MakeDepartmentFolders(staging, plan);

    BatchProgress progress(int(plan.jobs.size()), o.quiet);
    for (std::size_t i = 0, done = 0; i < plan.jobs.size(); ++i)
        if (plan.jobs[i].status == BatchJob::Status::Failed)
            progress.Finished(plan.jobs[i], int(++done));
    const bool completed = RunBatchJobs(
        plan.jobs, CompanionsAtOnce(o), QCoreApplication::applicationFilePath(),
        [&](BatchJob& job, int done) {
            job.message = staging.AsOutput(job.message);
            progress.Finished(job, done);
        },
        watch, limit);
    if (!completed || watch.Requested()) return Interrupted(progress, limit);
    try {
        WriteOutputFile(QDir(staging.Path()).filePath(QStringLiteral("summary.csv")),
                        BatchSummary(plan.jobs).toUtf8());
        WriteOutputFile(QDir(staging.Path()).filePath(QStringLiteral("mismatches.csv")),
                        MismatchesCsv(plan.jobs).toUtf8());
    } catch (const RuntimeError& e) {
        BatchSay(staging.AsOutput(e.description()));
        return kSomeFailed;
    }
    if (watch.Requested()) return Interrupted(progress, limit);
    if (!staging.SwapIn()) return kSomeFailed;
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
