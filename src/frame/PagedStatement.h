#pragma once

#include <QString>
#include <memory>

#include "core/RuntimeError.h"
#include "frame/ExportSteps.h"
#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"
#include "frame/GridRow.h"
#include "frame/SheetModel.h"
#include "frame/StatementConditions.h"
#include "frame/TextMeasure.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

// A statement shown page by page: what a report window with a pager asks of
// its report. The window moves data between its controls and this object.
//   statementGrid: MSFlexGrid1, the statement grid; ratios: MSFlexGrid2, the split ratios.
class PagedStatement {
  public:
    // What a run gives: whether it found rows, and what its trap caught.
    struct RunOutcome {
        RunOutcome(bool found = false, Trapped caught = {})
            : rows(found), trapped(std::move(caught)) {}
        bool rows;
        Trapped trapped;
        operator bool() const { return rows; }
    };

    virtual ~PagedStatement() = default;

    // A copy to run on, so that a run that is stopped leaves this one as it was.
    virtual std::unique_ptr<PagedStatement> Clone() const = 0;

    // The default header, before any fee item is known.
    virtual void InitGridHeader(FlexGrid& statementGrid) const = 0;
    // Finds the department's fee items in the window, fills FeeItems and the
    // split-ratio grid with the default percentages, and lays the header when
    // any item was found. Returns what an error trap caught (and showed).
    virtual Trapped ExtractFeeItems(const StatementConditions& conditions, FlexGrid& ratios,
                                    FlexGrid& statementGrid) = 0;
    // Lays the header from FeeItems and the percentages; sets FeeColumnCount.
    virtual void BuildGridHeader(FlexGrid& statementGrid, const FlexGrid& ratios) = 0;
    // Computes the rows; rows when there is at least one. Sets PageCount.
    virtual RunOutcome RunStatistics(const StatementConditions& conditions, const FlexGrid& ratios,
                                     int pageSize) = 0;
    // Writes one page under the header (statementGrid keeps its two header rows):
    // each record of the page through WriteRow.
    virtual void ShowPage(FlexGrid& statementGrid, int page, int pageSize,
                          const TextMeasure& measure) const;
    // Record r (1 to UpperBound()) as the grid shows it, column 0 aside (the
    // record's index); widths come from the header.
    virtual void WriteRow(GridRow& row, int r, const TextMeasure& measure) const = 0;
    // The whole statement, all pages, on one sheet: the report's workbook.
    virtual void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                            const WorkbookContext& context) const = 0;

    virtual const FeeItemList& FeeItems() const = 0;
    virtual int FeeColumnCount() const = 0;
    virtual int PageCount() const = 0;
    // The last row of the statement, appended rows included; 0 before a run.
    virtual int UpperBound() const = 0;
};

}  // namespace yunqi
