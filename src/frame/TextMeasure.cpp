#include "frame/TextMeasure.h"

namespace yunqi {

int EstimatedTextMeasure::TextWidth(const QString& text) const {
    constexpr int kEm = 180;  // 9 points in twips
    int width = 0;
    for (QChar c : text) width += c.unicode() >= 0x2E80 ? kEm : kEm / 2;
    return width;
}

}  // namespace yunqi
