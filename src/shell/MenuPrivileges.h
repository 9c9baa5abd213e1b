#pragma once

#include <QString>
#include <vector>

#include "db/DatabaseSession.h"

namespace yunqi {

// A menu entry (by its form name) as the privilege tables grant it to a post.
struct MenuPrivilege {
    QString formName;
    bool allowed;
};

// The granted rows of the post's groups for the menu of memo, in Popedom order.
QString MenuPrivilegeSql(const QString& postCode, const QString& memo);
std::vector<MenuPrivilege> ReadMenuPrivileges(DatabaseSession& session, const QString& postCode,
                                              const QString& memo);

}  // namespace yunqi
