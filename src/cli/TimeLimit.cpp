#include "cli/TimeLimit.h"

#include <QRegularExpression>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "cli/CommandLine.h"
#include "cli/os/Console.h"
#include "core/TemporaryFiles.h"

namespace yunqi {

QString TimeoutProblem(const QString& name, const QString& value) {
    static const QRegularExpression digits(QStringLiteral("^\\d{1,10}$"));
    const bool ok = digits.match(value).hasMatch() && value.toLongLong() >= 1 &&
                    value.toLongLong() <= kMostTimeoutSeconds;
    return ok ? QString()
              : Wants(name,
                      QStringLiteral("a whole number of seconds from 1 to %1")
                          .arg(kMostTimeoutSeconds),
                      value);
}

QString TimeLimitText(int seconds) {
    return QStringLiteral("stopped after the time limit of %1 s").arg(seconds);
}

TimeLimit::TimeLimit(int seconds, const QString& prefix)
    : seconds_(seconds), line_((prefix + TimeLimitText(seconds) + QLatin1Char('\n')).toUtf8()) {
    if (seconds_ <= 0) return;
    deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(seconds_);
    watcher_ = std::thread([this] { Watch(); });
}

TimeLimit::~TimeLimit() { Stop(); }

void TimeLimit::Stop() {
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    wake_.notify_all();
    if (watcher_.joinable()) watcher_.join();
}

void TimeLimit::EndBy(std::function<void()> request) {
    const std::lock_guard lock(mutex_);
    request_ = std::move(request);
}

bool TimeLimit::Reached() const {
    const std::lock_guard lock(mutex_);
    return reached_;
}

int TimeLimit::SecondsLeft() const {
    if (seconds_ <= 0) return 0;
    const auto left = deadline_ - std::chrono::steady_clock::now();
    return int(std::max<std::chrono::seconds::rep>(
        1, std::chrono::ceil<std::chrono::seconds>(left).count()));
}

void TimeLimit::Watch() {
    std::unique_lock lock(mutex_);
    if (wake_.wait_until(lock, deadline_, [this] { return stopped_; })) return;
    reached_ = true;
    if (request_) {
        request_();
        return;
    }
    // The main thread may be inside the driver for good: the end is ours,
    // with nothing left behind, whatever that thread is writing.
    RemoveTemporaryOutputsFromAnyThread();
    // A progress line on a terminal is cleared first.
    if (IsTerminal(stderr)) std::fputs("\r\033[K", stderr);
    std::fputs(line_.constData(), stderr);
    std::fflush(stderr);
    std::_Exit(kExitTimeLimit);
}

}  // namespace yunqi
