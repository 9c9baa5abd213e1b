#pragma once

#include <QString>

#include "frame/FlexGrid.h"
#include "frame/SheetModel.h"

namespace yunqi {

// The parts every statement sheet lays out alike, in the order the sheets
// set them.
namespace WorkbookLayout {

// Rows 1 to 3: the title merged and centred over the table's columns, then
// the department and the period lines, each merged over columns 1 to 4 and
// left-aligned.
void TitleBlock(SheetModel& sheet, int cols, const QString& title, const QString& deptLine,
                const QString& periodLine);
// Sheet rows 4 and 5: the grid's two header rows, centred; each column as
// wide as its grid column (twips / 110).
void GridHeader(SheetModel& sheet, const FlexGrid& grid);
// The money range as "#0.00", right-aligned; the title bold; rows 2 to
// lastRow in 9 point; borders over rows 4 to lastTableRow. Fonts are 微软雅黑.
void Finish(SheetModel& sheet, int cols, const SheetModel::Area& money, int lastRow,
            int lastTableRow);

}  // namespace WorkbookLayout

}  // namespace yunqi
