#include "frame/TicketStatement.h"

#include "frame/FeeItemReader.h"

namespace yunqi {

void TicketStatement::LoadItems(const QString& sql, FlexGrid& grid2, FlexGrid& grid1) {
    LoadFeeItems(session_, sql, grid2, feeItems_);
    if (feeItems_.size() > 1) BuildGridHeader(grid1, grid2);
}

}  // namespace yunqi
