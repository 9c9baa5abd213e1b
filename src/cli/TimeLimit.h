#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace yunqi {

// --timeout SECONDS: a run that takes longer ends with this status, as a
// scheduler's time limit ends a job.
constexpr int kExitTimeLimit = 124;
constexpr int kMostTimeoutSeconds = 2147483647;

// The option's check: a whole number of seconds from 1 up.
QString TimeoutProblem(const QString& name, const QString& value);

// "stopped after the time limit of 30 s"
QString TimeLimitText(int seconds);

// The limit of one run, watched on a thread of its own, so that it holds also
// while the run waits inside the database driver for a server that never
// answers. At the limit the temporary outputs are removed, "PREFIX" and the
// limit's text go to standard error, and the process ends with
// kExitTimeLimit, unless EndBy() gave another way to stop.
class TimeLimit {
  public:
    // No limit for 0 seconds. prefix starts the line: "yunqi-statement: ".
    TimeLimit(int seconds, const QString& prefix);
    // The run is over: the limit no longer acts.
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    // From now on the limit calls request (on its own thread) instead of
    // ending the process; the run stops itself and sees Reached().
    void EndBy(std::function<void()> request);
    // As the destructor, earlier.
    void Stop();
    bool Reached() const;
    int Seconds() const { return seconds_; }
    // What is left, in whole seconds rounded up and at least 1; 0 without a limit.
    int SecondsLeft() const;

  private:
    void Watch();

    const int seconds_;
    const QByteArray line_;
    std::chrono::steady_clock::time_point deadline_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    bool stopped_ = false;
    bool reached_ = false;
    std::function<void()> request_;
    std::thread watcher_;
};

}  // namespace yunqi
