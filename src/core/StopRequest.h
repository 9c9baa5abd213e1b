#pragma once

#include <atomic>

namespace yunqi {

// A request, made on one thread, that the work on another stop. The work
// looks at it where it can end cleanly (before a query, between rows) and
// ends with Stopped; a query already running is stopped at the driver
// (DatabaseSession::Interrupt).
class StopRequest {
  public:
    void Request() { requested_ = true; }
    bool Requested() const { return requested_; }

  private:
    std::atomic<bool> requested_{false};
};

// Thrown where the work sees its stop request. Not a RuntimeError: no error
// trap takes it, and it reaches whoever started the work.
struct Stopped {};

// For its life, the work on this thread answers to request.
class StopScope {
  public:
    explicit StopScope(const StopRequest& request);
    ~StopScope();
    StopScope(const StopScope&) = delete;
    StopScope& operator=(const StopScope&) = delete;

  private:
    const StopRequest* outer_;
};

// Whether the work on this thread was asked to stop.
bool StopRequestedHere();
// Throws Stopped when it was.
void ThrowIfStopRequested();

}  // namespace yunqi
