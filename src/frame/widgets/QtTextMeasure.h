#pragma once

#include <QFont>
#include <QFontMetrics>

#include "frame/TextMeasure.h"

namespace yunqi {

// Text width as the grid draws it, in twips at 15 twips a pixel.
class QtTextMeasure : public TextMeasure {
  public:
    explicit QtTextMeasure(const QFont& font) : metrics_(font) {}
    int TextWidth(const QString& text) const override {
        return metrics_.horizontalAdvance(text) * 15;
    }

  private:
    QFontMetrics metrics_;
};

}  // namespace yunqi
