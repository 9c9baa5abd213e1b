#pragma once

#include <QString>
#include <vector>

#include "frame/DetailHeader.h"
#include "frame/DetailRows.h"
#include "frame/ExportSteps.h"
#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"
#include "frame/SheetModel.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

// The pieces the statement workbooks share, each writing the same cells in
// the same order wherever it is used.
namespace WorkbookParts {

constexpr int kLightBlue = 0xFFC0C0;    // header bands and totals (blue-green-red)
constexpr int kLightOrange = 0xC0E0FF;  // 小计 rows

// Rows 1 to 3 over columns 1 to c: the title merged and centred, the
// department line and the date line (" 开票日期 : " from " 至 " to), merged
// over columns 1 to 4 and left-aligned.
void WriteTitleBlock(SheetModel& sheet, int c, const WorkbookContext& context);
// The same with another third line, for the statements of a year and months.
void WriteTitleBlock(SheetModel& sheet, int c, const WorkbookContext& context,
                     const QString& periodLine);

// Rows 4 and 5: the grid's two header rows, centred, with the column widths
// of the grid (twips / 110).
void CopyGridHeader(SheetModel& sheet, const FlexGrid& grid);

// Row 4: the band of each fee item, its columns merged; the first item's
// columns start after column first. Returns the last column of the bands.
int MergeFeeBands(SheetModel& sheet, const FeeItemList& items, int first);

// The head of a ticket statement's sheet: the title block, the grid's header,
// the merges the plan implies (a column marked to merge down over rows 4 and
// 5; neighbours of one band across row 4; each fee item's band) and the
// header's light blue.
void WriteTicketHeader(SheetModel& sheet, const WorkbookContext& context,
                       const DetailHeaderPlan& plan, const FeeItemList& items);

// The start of record r's sheet row (r + 5, returned): the progress step, the
// rows above complete, and the record's index, centred, in column 1.
int StartRecordRow(SheetModel& sheet, ExportFrame::ExportSteps& steps, int r);

// Record r of a ticket statement on sheet row s: the date (yyyy-mm-dd,
// centred) in column 2; the numbers of the first numberColumns kinds
// (专用发票, 普通发票, 电子发票, 收据) as text from column 3; the fee amounts
// after them; the row's total, payment method and payer in the last three of
// the c columns; the row wrapped.
void WriteTicketRow(SheetModel& sheet, int s, const DetailRows& rows, int r, int numberColumns,
                    int c);

// Fonts and borders of the finished table: 微软雅黑, the title bold, size 9
// from row 2 to lastRow (or to fontLastRow, when given), borders from row 4
// to lastRow. Declared before the rows: each row takes them as it completes.
void FinishTable(SheetModel& sheet, int lastRow, int c, int fontLastRow = 0);

// One text of the signature line; an alignment of 0 leaves the cell's own.
struct SignatureText {
    int column;
    QString text;
    int alignment = 0;
};
// The signature line: each text in its column.
void WriteSignatureLine(SheetModel& sheet, int row, const std::vector<SignatureText>& texts);

}  // namespace WorkbookParts

}  // namespace yunqi
