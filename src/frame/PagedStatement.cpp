#include "frame/PagedStatement.h"

#include "frame/Pager.h"

namespace yunqi {

void PagedStatement::ShowPage(FlexGrid& statementGrid, int page, int pageSize,
                              const TextMeasure& measure) const {
    Pager::FillPage(statementGrid, page, pageSize, UpperBound(), [&](int g, int r) {
        FlexGridRow row(statementGrid, g);
        WriteRow(row, r, measure);
    });
}

}  // namespace yunqi
