#pragma once

#include <QString>

namespace yunqi {

// How wide a text would be drawn, in twips. The window measures with its own
// font; the headless companion estimates.
class TextMeasure {
  public:
    virtual ~TextMeasure() = default;
    virtual int TextWidth(const QString& text) const = 0;
};

// An estimate for 9-point text without a font at hand: wide (CJK) characters
// count a full em, others half.
class EstimatedTextMeasure : public TextMeasure {
  public:
    int TextWidth(const QString& text) const override;
};

}  // namespace yunqi
