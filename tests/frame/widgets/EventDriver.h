#pragma once

// Drives windows as an operator does: real mouse and key events through
// QTest, delivered to whatever widget is drawn at the point, and the event
// loop run between the steps.

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QTest>

#include "frame/widgets/FlexGridView.h"
#include "frame/widgets/PagedReportWindow.h"
#include "reports/Reports.h"
#include "shell/widgets/MainWindow.h"
#include "shell/widgets/ReportWindows.h"

namespace yunqi::testing {

// Lets the event loop run what is pending, posted deletions included.
inline void Settle() {
    for (int i = 0; i < 3; ++i) {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
}

// A click at a point of w, given to the widget drawn there.
inline void ClickAt(QWidget* w, const QPoint& at) {
    QWidget* target = w->childAt(at) ? w->childAt(at) : w;
    QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(w, at));
    Settle();
}

inline void Click(QWidget* w) { ClickAt(w, w->rect().center()); }

// A click on a cell as the grid draws it now.
inline void ClickCell(FlexGridView* grid, int row, int col) {
    const QRect cell = grid->CellRect(row, col);
    ASSERT_TRUE(cell.isValid()) << row << "," << col;
    ClickAt(grid, cell.center());
}

inline QAction* ActionNamed(QWidget* w, const QString& text) {
    for (QAction* a : w->actions())
        if (a->text() == text) return a;
    return nullptr;
}

// Chooses an entry of a menu of the menu bar with the mouse.
inline void ChooseFromMenu(QMenuBar* bar, const QString& menu, const QString& entry) {
    QAction* top = ActionNamed(bar, menu);
    ASSERT_TRUE(top) << menu.toStdString();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(top).center());
    Settle();
    QMenu* popup = top->menu();
    ASSERT_TRUE(popup->isVisible()) << menu.toStdString();
    QAction* item = ActionNamed(popup, entry);
    ASSERT_TRUE(item) << entry.toStdString();
    const QPoint at = popup->actionGeometry(item).center();
    QTest::mouseMove(popup, at);
    QTest::mouseClick(popup, Qt::LeftButton, {}, at);
    Settle();
}

// Clicks on a scroll bar's page area just before the arrow at the far end.
inline void ScrollByClicks(QScrollBar* bar, int clicks) {
    const bool horizontal = bar->orientation() == Qt::Horizontal;
    const QPoint at = horizontal ? QPoint(bar->width() - bar->height() - 3, bar->height() / 2)
                                 : QPoint(bar->width() / 2, bar->height() - bar->width() - 3);
    for (int i = 0; i < clicks; ++i) {
        QTest::mouseClick(bar, Qt::LeftButton, {}, at);
        Settle();
    }
}

// A control of a window by its design name.
template <typename T = QWidget>
T* Child(QWidget* w, const char* name) {
    T* child = w->findChild<T*>(QString::fromUtf8(name));
    EXPECT_TRUE(child) << name;
    return child;
}

inline void ClickButton(QWidget* w, const char* name) { Click(Child<QAbstractButton>(w, name)); }

// Text typed into a box, then Enter.
inline void Type(QWidget* w, const QString& text) {
    QTest::keyClicks(w, text);
    QTest::keyClick(w, Qt::Key_Return);
    Settle();
}

// The main program's window with the given entries, shown at a working size.
inline std::unique_ptr<MainWindow> ShownMainWindow(
    std::map<QString, MainWindow::WindowFactory> windows, QSize size = {1400, 1000}) {
    auto main = std::make_unique<MainWindow>(std::move(windows));
    main->resize(size);
    main->show();
    Settle();
    return main;
}

// The main program's window with a menu entry for every report.
inline std::unique_ptr<MainWindow> MainWindowOfAllReports(DatabaseSession& session) {
    return ShownMainWindow(ReportWindows(session));
}

// The window of a 统计报表 entry, chosen with the mouse.
template <typename T = ReportWindow>
T* OpenFromMenu(MainWindow& main, const QString& entry) {
    ChooseFromMenu(main.menuBar(), QStringLiteral("统计报表"), entry);
    return qobject_cast<T*>(main.OpenWindow(entry));
}

}  // namespace yunqi::testing
