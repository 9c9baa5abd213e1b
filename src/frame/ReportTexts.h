#pragma once

#include <QString>

namespace yunqi {

// The texts by which the report windows differ.
struct ReportTexts {
    QString caption;          // window caption
    QString title;            // Label1(0) at load; the title a List1 click appends
    QString conditionsTitle;  // Label1(1)
    QString dateRangeLabel;   // Label1(10)
    QString extractingText;   // Label3 while Command3 runs
    QString noFeeItemsText;   // Command3 found no fee item
    QString runningText;      // Label3 while Command6 runs
    QString noRowsText;       // Command6 found no row
    QString exportedText;     // the export's success message
};

}  // namespace yunqi
