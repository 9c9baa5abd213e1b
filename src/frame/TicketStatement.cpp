#include "frame/TicketStatement.h"

#include "frame/FeeItemReader.h"

namespace yunqi {

void TicketStatement::LoadItems(const QString& sql, FlexGrid& ratios, FlexGrid& statementGrid) {
    LoadFeeItems(session_, sql, ratios, feeItems_);
    if (feeItems_.size() > 1) BuildGridHeader(statementGrid, ratios);
}

}  // namespace yunqi
