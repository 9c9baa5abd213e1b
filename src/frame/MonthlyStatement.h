#pragma once

#include <QString>
#include <memory>

#include "core/RuntimeError.h"
#include "frame/ExportSteps.h"
#include "frame/FeeItem.h"
#include "frame/FlexGrid.h"
#include "frame/SheetModel.h"
#include "frame/StatementConditions.h"
#include "frame/WorkbookContext.h"

namespace yunqi {

// A statement of a year and a range of months, without pages: its figures
// live only in the cells of statementGrid (MSFlexGrid1), and each later step reads
// the cell texts back. The window and the companion share it.
class MonthlyStatement {
  public:
    virtual ~MonthlyStatement() = default;

    // A copy to run on, so that a run that is stopped leaves this one as it was.
    virtual std::unique_ptr<MonthlyStatement> Clone() const = 0;

    // The header before any fee item is known.
    virtual void InitGridHeader(FlexGrid& statementGrid) const = 0;
    // Reads the invoice types (no error trap) and returns InvoiceTypeList;
    // keeps whatever finer lists the statement needs.
    virtual QString LoadInvoiceTypes() = 0;
    // Label1(0) after a click on a List1 entry, with the year then chosen.
    virtual QString TitleCaption(const QString& entry, const QString& year) const = 0;
    // Fills FeeItems for the department and the months and lays the header,
    // also with no item. A failing query shows its message and leaves the
    // items read so far; the error is returned.
    virtual Trapped ExtractFeeItems(const StatementConditions& conditions,
                                    FlexGrid& statementGrid) = 0;
    // Appends every month's rows, its closing rows and the total under the
    // two header rows of statementGrid. Errors without a trap raise RuntimeError; the
    // first that a trap caught (and showed) is returned.
    virtual Trapped RunReconciliation(const StatementConditions& conditions,
                                      FlexGrid& statementGrid) = 0;
    // The grid as it stands, on one sheet.
    virtual void WriteSheet(SheetModel& sheet, ExportFrame::ExportSteps& steps,
                            const WorkbookContext& context) const = 0;

    virtual const FeeItemList& FeeItems() const = 0;
};

// The check of a year-months panel after the department: the last month may
// not sort before the first, compared as text.
inline bool MonthsInOrder(const QString& fromMonth, const QString& toMonth) {
    return !(toMonth < fromMonth);
}

}  // namespace yunqi
