#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "frame/FlexGrid.h"

namespace yunqi {

// Page arithmetic of the paged viewer. Pages run from 1.
namespace Pager {

// Rows per page from the grid's height and its header row height: height /
// rowHeight - 1, to the nearest integer, ties to even.
int PageSizeFor(int gridHeight, int rowHeight);
// Whole pages, plus one for a remainder.
int PageCountOf(int rows, int pageSize);
// "第 01 页 共 03 页"; longer numbers are not cut.
QString PageText(int currentPage, int pageCount);
// The empty page text a run without rows leaves.
QString EmptyPageText();
// First row of a page in the whole statement.
int FirstRowOf(int page, int pageSize);

// The four images: first, previous, next, last.
enum class PagerImage { First = 0, Previous = 1, Next = 2, Last = 3 };
int TargetPage(PagerImage image, int currentPage, int pageCount);

// Text6 with Enter: the page to go to, or none (the box is then emptied).
std::optional<int> PageFromText(const QString& text, int pageCount);

// Writes one page of a statement under the grid's two header rows: the grid
// hidden while it fills, word wrap on, a grid row per record with the
// record's index in column 0; writeRow fills the rest of grid row g from
// record r.
void FillPage(FlexGrid& grid, int page, int pageSize, int lastRecord,
              const std::function<void(int g, int r)>& writeRow);

}  // namespace Pager

}  // namespace yunqi
