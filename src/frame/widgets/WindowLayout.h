#pragma once

#include <QFont>
#include <QRect>
#include <QString>
#include <QWidget>
#include <map>
#include <span>

#include "frame/ReportTexts.h"
#include "frame/widgets/Twips.h"

namespace yunqi {

// What a row of a layout table creates.
enum class ControlKind {
    Picture,      // a plain container (picture box); a back colour makes it a panel
    Label,        // QLabel
    Button,       // QPushButton
    List,         // QListWidget, one selection
    Grid,         // FlexGridView; the window binds its FlexGrid model
    DatePicker,   // QDateEdit with a calendar
    TextBox,      // QLineEdit
    ComboBox,     // QComboBox, a drop-down list
    Image,        // QToolButton that draws an image and is clicked
    ProgressBar,  // QProgressBar
    StatusBar,    // QStatusBar; the window adds its panels
};

// The fonts of the design: 9 point, the panel heading, the report title.
enum class ControlFont { Normal, Heading, Title };
QFont DesignFont(ControlFont font);

// A control's text: one of the design, or one by which the reports differ.
struct ControlText {
    const char* design = nullptr;
    QString ReportTexts::*report = nullptr;
    QString Of(const ReportTexts& texts) const;
};
constexpr ControlText Said(const char* text) { return {text, nullptr}; }
constexpr ControlText ByReport(QString ReportTexts::*text) { return {nullptr, text}; }

// One control of a window: kind, design name, container (null: the window),
// design box in twips, text, font, and whether it starts hidden.
struct ControlSpec {
    ControlKind kind;
    const char* name;
    const char* container;
    QRect box;  // left, top, width, height in twips
    ControlText text = {};
    ControlFont font = ControlFont::Normal;
    bool hidden = false;
    int backColor = -1;  // blue-green-red, -1 for the default
};

constexpr bool kHidden = true;

// The controls of one window, in creation order: a later row lies above an
// earlier one of the same container, and a container comes before its content.
using WindowLayout = std::span<const ControlSpec>;

// The controls of a window by design name.
class ControlSet {
  public:
    // Creates, names, places and labels the controls of a table under root.
    // A container must be root or a control created before.
    void Build(QWidget* root, WindowLayout layout, const ReportTexts& texts);

    QWidget* Find(const QString& name) const;
    // The control of that name; a name the tables don't hold is a programming
    // error and ends the program with the name.
    template <typename T>
    T* Get(const QString& name) const {
        return static_cast<T*>(Checked(name, T::staticMetaObject));
    }

  private:
    QWidget* Checked(const QString& name, const QMetaObject& kind) const;
    std::map<QString, QWidget*> controls_;
};

// A widget's box in twips, and placing one at a twips box.
QRect TwipsBox(const QWidget* w);
void PlaceAt(QWidget* w, const QRect& twips);

}  // namespace yunqi
