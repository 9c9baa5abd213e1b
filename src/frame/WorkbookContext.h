#pragma once

#include <QString>

#include "frame/FlexGrid.h"
#include "frame/StatementConditions.h"

namespace yunqi {

// What a report's workbook takes from the window besides its statement.
struct WorkbookContext {
    const FlexGrid& statementGrid;  // MSFlexGrid1 with the header of the run
    QString title;                  // Label1(0)
    QString entry;                  // the selected List1 entry
    StatementConditions conditions;
};

}  // namespace yunqi
