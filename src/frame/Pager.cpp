#include "frame/Pager.h"

#include "core/RuntimeError.h"
#include "core/ValueRules.h"

namespace yunqi {

namespace Pager {

int PageSizeFor(int gridHeight, int rowHeight) {
    return int(ValueRules::RoundHalfEven(double(gridHeight) / rowHeight - 1));
}

int PageCountOf(int rows, int pageSize) {
    if (pageSize == 0) throw RuntimeError(ErrorCode::DivisionByZero);
    return rows / pageSize + (rows % pageSize != 0 ? 1 : 0);
}

QString PageText(int currentPage, int pageCount) {
    return QStringLiteral("第 ") + ValueRules::Format00(currentPage) + QStringLiteral(" 页 共 ") +
           ValueRules::Format00(pageCount) + QStringLiteral(" 页");
}

QString EmptyPageText() { return QStringLiteral("第 00 页 共 00 页"); }

int FirstRowOf(int page, int pageSize) { return (page - 1) * pageSize + 1; }

int TargetPage(PagerImage image, int currentPage, int pageCount) {
    switch (image) {
        case PagerImage::First:
            return 1;
        case PagerImage::Previous:
            return currentPage - 1 < 2 ? 1 : currentPage - 1;
        case PagerImage::Next:
            return currentPage + 1 > pageCount ? pageCount : currentPage + 1;
        case PagerImage::Last:
            return pageCount;
    }
    return currentPage;
}

std::optional<int> PageFromText(const QString& text, int pageCount) {
    const double value = ValueRules::Val(text);
    if (value > 0 && value <= pageCount) return int(ValueRules::RoundHalfEven(value));
    return std::nullopt;
}

void FillPage(FlexGrid& grid, int page, int pageSize, int lastRecord,
              const std::function<void(int g, int r)>& writeRow) {
    grid.SetRows(2);
    grid.SetVisible(false);
    grid.SetWordWrap(true);
    int written = 0;
    for (int r = FirstRowOf(page, pageSize); r <= lastRecord; ++r) {
        grid.SetRows(grid.Rows() + 1);
        const int g = grid.Rows() - 1;
        grid.SetRow(g);
        grid.SetTextMatrix(g, 0, QString::number(r));
        writeRow(g, r);
        if (++written == pageSize) break;
    }
    grid.SetVisible(true);
}

}  // namespace Pager

}  // namespace yunqi
