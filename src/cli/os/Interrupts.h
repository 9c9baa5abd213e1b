#pragma once

#include <functional>
#include <memory>

namespace yunqi {

// While it lives, a request to stop the process (SIGINT, SIGTERM, SIGHUP,
// SIGPIPE; on Windows Ctrl+C, Ctrl+Break and the console closing) is kept
// instead of ending the process: the event loop calls the handler, and
// Requested() tells it also before the event loop has seen it.
class InterruptWatch {
  public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    // What a request does from now on, on the thread that runs the event loop.
    void OnInterrupt(std::function<void()> handler);
    // Whether a request came; one the event loop has not taken yet is taken
    // now, and the handler called.
    bool Requested();
    // A request from this process (a time limit), from any thread.
    void Request();

  private:
    struct State;
    std::unique_ptr<State> d_;
};

}  // namespace yunqi
