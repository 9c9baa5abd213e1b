#include "db/SessionState.h"

namespace yunqi {

SessionState& AppSession() {
    static SessionState state;
    return state;
}

}  // namespace yunqi
