#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/RuntimeError.h"
#include "db/DatabaseSession.h"

namespace yunqi {

// The condition panel without its widgets: the department list, the list of
// invoice types every statement filters on, and the checks of the extraction.
namespace Conditions {

// The entries of List1, in the order of the query: code, a blank, the site
// name on one line, then the site code in "【】". A failure shows its message
// and returns the entries read so far.
QStringList LoadDepartments(DatabaseSession& session, Trapped* trapped = nullptr);
// The codes of the types with 定额 0, each quoted, comma-joined. No error trap.
QString LoadInvoiceTypes(DatabaseSession& session);

QString DeptCodeOf(const QString& entry);  // up to the first blank
QString SiteCodeOf(const QString& entry);  // between "【" and the first "】" after it
// What follows the first blank, up to the first "【".
QString DepartmentOf(const QString& entry);
// Label1(0) after a click on the entry: "【" department "】" + the report's title.
QString TitleCaption(const QString& entry, const QString& reportTitle);
// The department line's text of the workbook: the entry up to its first "【".
QString EntryBeforeBracket(const QString& entry);

// The checks of Command3, in order: the message to show, or none.
enum class ConditionProblem { NoDepartment, EndBeforeStart };
std::optional<ConditionProblem> CheckConditions(bool departmentSelected, const QDate& from,
                                                const QDate& to);
QString MessageOf(ConditionProblem problem);

}  // namespace Conditions

}  // namespace yunqi
