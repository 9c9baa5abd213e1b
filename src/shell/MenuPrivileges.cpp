#include "shell/MenuPrivileges.h"

#include "core/ValueRules.h"

namespace yunqi {

QString MenuPrivilegeSql(const QString& postCode, const QString& memo) {
    QString sql = QStringLiteral(
        "SELECT DISTINCT 岗位权限设置.id , 岗位权限设置.组代号, 岗位权限设置.岗位代号, "
        "岗位权限设置.授权, GroupPrivilege.FormName, GroupPrivilege.Popedom");
    sql += QStringLiteral(
        " FROM  岗位权限设置 INNER JOIN GroupPrivilege ON 岗位权限设置.组代号 = "
        "GroupPrivilege.GroupID");
    sql += QStringLiteral(" Where 授权 = 1 AND 岗位代号='") + postCode + QStringLiteral("'");
    sql += QStringLiteral(" AND Memo='") + memo + QStringLiteral("'");
    sql += QStringLiteral(" ORDER BY GroupPrivilege.Popedom");
    return sql;
}

std::vector<MenuPrivilege> ReadMenuPrivileges(DatabaseSession& session, const QString& postCode,
                                              const QString& memo) {
    Recordset rs = session.Open(MenuPrivilegeSql(postCode, memo));
    std::vector<MenuPrivilege> privileges;
    for (; !rs.AtEnd(); rs.MoveNext())
        privileges.push_back({ValueRules::TextOf(rs.Value(QStringLiteral("FormName"))),
                              ValueRules::NumberOf(rs.Value(QStringLiteral("Popedom"))) != 0});
    return privileges;
}

}  // namespace yunqi
