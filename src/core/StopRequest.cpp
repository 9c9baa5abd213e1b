#include "core/StopRequest.h"

namespace yunqi {

namespace {
thread_local const StopRequest* current = nullptr;
}

StopScope::StopScope(const StopRequest& request) : outer_(current) { current = &request; }

StopScope::~StopScope() { current = outer_; }

bool StopRequestedHere() { return current && current->Requested(); }

void ThrowIfStopRequested() {
    if (StopRequestedHere()) throw Stopped{};
}

}  // namespace yunqi
