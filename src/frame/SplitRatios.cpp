#include "frame/SplitRatios.h"

#include "core/RuntimeError.h"
#include "core/ValueRules.h"

namespace yunqi {

namespace SplitRatios {

FlexGrid NewGrid() {
    // Headings, alignments and widths of the design format string
    // "^序  |<停车费项目                   |>开发商 |>物业公司|".
    struct Field {
        const char* heading;
        int alignment;
        int width;
    };
    static const Field fields[] = {
        {"序", FlexGrid::AlignCenterCenter, 405},
        {"停车费项目", FlexGrid::AlignLeftCenter, 2745},
        {"开发商", FlexGrid::AlignRightCenter, 795},
        {"物业公司", FlexGrid::AlignRightCenter, 885},
        {"", FlexGrid::AlignGeneral, 0},
    };
    FlexGrid grid(1, 5, 1, 1);
    for (int c = 0; c < 5; ++c) {
        grid.SetTextMatrix(0, c, QString::fromUtf8(fields[c].heading));
        grid.SetColAlignment(c, fields[c].alignment);
        grid.SetFixedAlignment(c, FlexGrid::AlignCenterCenter);
        grid.SetColWidth(c, fields[c].width);
    }
    return grid;
}

void Fill(FlexGrid& grid, const FeeItemList& items) {
    grid.SetRows(1);
    for (std::size_t i = 1; i < items.size(); ++i) {
        if (!items[i].IsParking()) continue;
        grid.SetRows(grid.Rows() + 1);
        const int row = grid.Rows() - 1;
        grid.SetRow(row);
        grid.SetTextMatrix(row, 0, QString::number(row));
        grid.SetTextMatrix(row, 1, items[i].ItemName);
        grid.SetTextMatrix(row, kDeveloperCol, QStringLiteral("70"));
        grid.SetTextMatrix(row, kPropertyCol, QStringLiteral("30"));
        grid.SetTextMatrix(row, kCodeCol, items[i].ItemCode);
    }
}

namespace {
// The conversion of a cell text to a double: blanks around a number are
// allowed, anything else is a type mismatch.
double CellNumber(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok) throw RuntimeError::TypeMismatch();
    return v;
}
}  // namespace

QString RatioText(const FlexGrid& grid, int row) {
    const double share = CellNumber(grid.TextMatrix(row, kPropertyCol)) / 100;
    return ValueRules::DoubleText(CellNumber(ValueRules::DoubleText(share)));
}

std::vector<int> RowsOf(const FlexGrid& grid, const QString& itemCode) {
    std::vector<int> rows;
    for (int r = 1; r < grid.Rows(); ++r)
        if (grid.TextMatrix(r, kCodeCol) == itemCode) rows.push_back(r);
    return rows;
}

int RowOfItem(const FlexGrid& grid, const QString& code) {
    const std::vector<int> rows = RowsOf(grid, QLatin1Char('\'') + code + QLatin1Char('\''));
    return rows.empty() ? -1 : rows.front();
}

void SetShares(FlexGrid& grid, int row, const QString& developer, const QString& property) {
    grid.SetTextMatrix(row, kDeveloperCol, developer);
    grid.SetTextMatrix(row, kPropertyCol, property);
}

bool SumIsHundred(const FlexGrid& grid, int row) {
    return ValueRules::Val(grid.TextMatrix(row, kPropertyCol)) +
               ValueRules::Val(grid.TextMatrix(row, kDeveloperCol)) ==
           100;
}

QString SumMessage() { return QStringLiteral("分成比例总和必须等于100,请重新设置分成比例!"); }

}  // namespace SplitRatios

}  // namespace yunqi
