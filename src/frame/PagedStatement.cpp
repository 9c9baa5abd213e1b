#include "frame/PagedStatement.h"

#include "frame/Pager.h"

namespace yunqi {

void PagedStatement::ShowPage(FlexGrid& grid1, int page, int pageSize,
                              const TextMeasure& measure) const {
    Pager::FillPage(grid1, page, pageSize, UpperBound(), [&](int g, int r) {
        FlexGridRow row(grid1, g);
        WriteRow(row, r, measure);
    });
}

}  // namespace yunqi
