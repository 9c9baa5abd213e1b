#pragma once

#include <functional>

#include "core/RuntimeError.h"

namespace yunqi::test {

// The number of the RuntimeError the call throws; 0 when it throws none.
inline long ErrorNumberOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

}  // namespace yunqi::test
