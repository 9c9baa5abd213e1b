#include "frame/TicketStatement.h"

#include "frame/FeeItemReader.h"

namespace yunqi {

void TicketStatement::LoadItems(const QString& sql, FlexGrid& grid2, FlexGrid& grid1) {
    feeItems_ = LoadFeeItems(session_, sql, grid2);
    if (feeItems_.size() > 1) BuildGridHeader(grid1, grid2);
}

}  // namespace yunqi
