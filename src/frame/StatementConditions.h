#pragma once

#include <QDate>
#include <QString>

// What a statement takes from its window's condition panel.
struct StatementConditions {
    QString DeptCode;         // text of the department entry up to its first blank
    QString SiteCode;         // between "【" and "】"; read by no statement SQL
    QString InvoiceTypeList;  // quoted codes of the types with 定额 0, e.g. '01','03'
    QDate From;               // DTPicker1(0)
    QDate To;                 // DTPicker1(1)
};
