#include "cli/CommandOutputs.h"

#include <QFileInfo>

#include "core/os/FileSystem.h"

namespace yunqi {

namespace {

// Two names of one file: the same file to the system when both exist, else
// the same absolute path once the folder's links are resolved.
bool SameFile(const QString& a, const QString& b) {
    os::Error error = 0;
    const os::FileInfo ia = os::Stat(a, &error), ib = os::Stat(b, &error);
    if (ia.identity && ib.identity) return *ia.identity == *ib.identity;
    if (ia.exists != ib.exists) return false;
    auto where = [](const QString& p) {
        const QFileInfo info(p);
        const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
        return (folder.isEmpty() ? info.absolutePath() : folder) + QLatin1Char('/') +
               info.fileName();
    };
    return where(a) == where(b);
}

bool IsRegularOrAbsent(const QString& path) {
    os::Error error = 0;
    const os::FileInfo info = os::Stat(path, &error);
    return !info.exists || info.regular;
}

}  // namespace

std::optional<QString> OutputClash(const std::vector<OutputOption>& outputs,
                                   const QStringList& inputs) {
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const OutputOption& out = outputs[i];
        if (out.path.isEmpty()) continue;
        if (out.dash == Dash::IsStdout && out.path == QLatin1String("-")) continue;
        for (const QString& input : inputs)
            if (!input.isEmpty() && SameFile(out.path, input))
                return out.option + QStringLiteral(" ") + out.path +
                       QStringLiteral(" is the ledger ") + input +
                       QStringLiteral(": an output never replaces an input");
        // Devices and FIFOs may take two outputs; a file can't hold both.
        for (std::size_t j = 0; j < i; ++j)
            if (!outputs[j].path.isEmpty() && IsRegularOrAbsent(out.path) &&
                !(outputs[j].dash == Dash::IsStdout && outputs[j].path == QLatin1String("-")) &&
                SameFile(out.path, outputs[j].path))
                return out.option + QStringLiteral(" and ") + outputs[j].option +
                       QStringLiteral(" name the same file ") + out.path;
    }
    return std::nullopt;
}

void CheckOutputs(const std::vector<OutputOption>& outputs) {
    for (const OutputOption& out : outputs)
        if (!out.path.isEmpty()) CheckOutput(out.path, out.dash);
}

SqlLogWriter::SqlLogWriter(const QString& path) : path_(path) {}

SqlLogWriter::~SqlLogWriter() = default;

void SqlLogWriter::Add(const QString& sql) {
    if (path_.isEmpty() || failure_) return;
    QString line = sql;
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    line += QLatin1Char('\n');
    try {
        if (!file_) file_ = std::make_unique<OutputFile>(path_);
        file_->Write(line.toUtf8());
    } catch (const RuntimeError& e) {
        failure_ = e;
        file_.reset();
    }
}

void SqlLogWriter::Check() const {
    if (failure_) throw *failure_;
}

void SqlLogWriter::Finish() {
    Check();
    if (!file_) return;
    try {
        file_->Commit();
    } catch (const RuntimeError& e) {
        failure_ = e;
        file_.reset();
        throw;
    }
    file_.reset();
}

}  // namespace yunqi
