#pragma once

#include <QString>
#include <memory>

#include "db/DatabaseSession.h"

namespace yunqi {

// Process-wide values, one instance, from start-up to the end of the process.
// The five identity fields are laid out for and never assigned: they stay
// empty for the whole run.
struct SessionState {
    std::unique_ptr<DatabaseSession> SessionConnection;
    QString SessionConnectionText;
    QString SessionEdition;
    QString SessionUser;
    QString SessionOperatorText;
    QString SessionDepartmentText;
    QString SessionPostText;
    QString SessionPostCode;
};

SessionState& AppSession();

}  // namespace yunqi
