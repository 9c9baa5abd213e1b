#include "shell/SessionState.h"

SessionState& AppSession() {
    static SessionState state;
    return state;
}
