#include "frame/Conditions.h"

#include "core/Dialogs.h"
#include "core/ErrorTrap.h"
#include "core/RuntimeError.h"
#include "core/ValueRules.h"

namespace yunqi {

namespace Conditions {

QStringList LoadDepartments(DatabaseSession& session, Trapped* trapped) {
    QStringList entries;
    const Trapped caught = RunTrapped(TrapForm::Report, [&] {
        QString sql = QStringLiteral("Select 职能部门编号,职能部门名称, gyd_dh, gyd_name ");
        sql += QStringLiteral(" From 设置管理处 ");
        sql += QStringLiteral(" Inner join 职能部门new on 对应部门代号=职能部门编号");
        sql += QStringLiteral(" Where 职能部门new.终止日期 Is Null ");
        sql += QStringLiteral(" Order by len(职能部门编号),职能部门编号");
        Recordset rs = session.Open(sql);
        const int code = rs.IndexOf(QStringLiteral("职能部门编号"));
        const int name = rs.IndexOf(QStringLiteral("gyd_name"));
        const int site = rs.IndexOf(QStringLiteral("gyd_dh"));
        while (!rs.AtEnd()) {
            entries << ValueRules::TextOrEmpty(rs.Value(code)) + ' ' +
                           ValueRules::RemoveCrLf(ValueRules::TextOf(rs.Value(name))) +
                           QStringLiteral("【") + ValueRules::TextOrEmpty(rs.Value(site)) +
                           QStringLiteral("】");
            rs.MoveNext();
        }
    });
    if (caught && trapped) *trapped = caught;
    return entries;
}

QString LoadInvoiceTypes(DatabaseSession& session) {
    QString sql = QStringLiteral("Select * From 票据类型 ");
    sql += QStringLiteral(" where 定额=0 order by 票据类型代号 ");
    Recordset rs = session.Open(sql);
    const int code = rs.IndexOf(QStringLiteral("票据类型代号"));
    QString list;
    while (!rs.AtEnd()) {
        const QString text = ValueRules::TextOf(rs.Value(code));
        if (list.isEmpty())
            list = '\'' + text + '\'';
        else
            list += QStringLiteral(",'") + text + '\'';
        rs.MoveNext();
    }
    return list;
}

QString DeptCodeOf(const QString& entry) {
    const int blank = entry.indexOf(' ');
    return blank < 0 ? entry : entry.left(blank);
}

QString SiteCodeOf(const QString& entry) {
    const int open = entry.indexOf(QStringLiteral("【"));
    if (open < 0) return QString();
    const int close = entry.indexOf(QStringLiteral("】"), open + 1);
    if (close < 0) return entry.mid(open + 1);
    return entry.mid(open + 1, close - open - 1);
}

QString DepartmentOf(const QString& entry) {
    const int blank = entry.indexOf(' ');
    const QString rest = blank < 0 ? QString() : entry.mid(blank + 1);
    const int open = rest.indexOf(QStringLiteral("【"));
    return open < 0 ? rest : rest.left(open);
}

QString TitleCaption(const QString& entry, const QString& reportTitle) {
    return QStringLiteral("【") + DepartmentOf(entry) + QStringLiteral("】") + reportTitle;
}

QString EntryBeforeBracket(const QString& entry) {
    const int open = entry.indexOf(QStringLiteral("【"));
    return open < 0 ? entry : entry.left(open);
}

std::optional<ConditionProblem> CheckConditions(bool departmentSelected, const QDate& from,
                                                const QDate& to) {
    if (!departmentSelected) return ConditionProblem::NoDepartment;
    if (to < from) return ConditionProblem::EndBeforeStart;
    return std::nullopt;
}

QString MessageOf(ConditionProblem problem) {
    switch (problem) {
        case ConditionProblem::NoDepartment:
            return QStringLiteral("请先选择统计部门!");
        case ConditionProblem::EndBeforeStart:
            return QStringLiteral("截至日期不能小于开始日期!");
    }
    return QString();
}

}  // namespace Conditions

}  // namespace yunqi
