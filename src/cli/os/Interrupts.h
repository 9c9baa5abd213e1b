#pragma once

#include <functional>
#include <memory>

namespace yunqi {

// While it lives, a request to stop the process (SIGINT, SIGTERM, SIGHUP;
// on Windows Ctrl+C, Ctrl+Break and the console closing) calls onInterrupt on
// the thread that runs the event loop, instead of ending the process.
class InterruptWatch {
  public:
    explicit InterruptWatch(std::function<void()> onInterrupt);
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

  private:
    struct State;
    std::unique_ptr<State> d_;
};

}  // namespace yunqi
