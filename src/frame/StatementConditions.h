#pragma once

#include <QDate>
#include <QString>

namespace yunqi {

// What a statement takes from its window's condition panel: a date window
// or a year and months, as the report asks.
struct StatementConditions {
    QString DeptCode;         // text of the department entry up to its first blank
    QString SiteCode;         // between "【" and "】"; read by no statement SQL
    QString InvoiceTypeList;  // quoted codes of the types with 定额 0, e.g. '01','03'
    QDate From;               // DTPicker1(0)
    QDate To;                 // DTPicker1(1)
    // The statements of a year and a range of months.
    QString Year;       // "2024"
    QString FromMonth;  // "01"
    QString ToMonth;    // "12"
};

}  // namespace yunqi
