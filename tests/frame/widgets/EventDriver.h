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

namespace yunqi::testing {

// Lets the event loop run what is pending, posted deletions included.
inline void Settle() {
    for (int i = 0; i < 3; ++i) {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
}

// A click at a point of root, given to the widget drawn there.
inline void ClickAt(QWidget* root, const QPoint& at) {
    QWidget* target = root->childAt(at);
    if (!target) target = root;
    QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(root, at));
    Settle();
}

inline void Click(QWidget* w) { ClickAt(w, w->rect().center()); }

// A click on a cell as the grid draws it now.
inline void ClickCell(FlexGridView* grid, int row, int col) {
    const QRect cell = grid->CellRect(row, col);
    ASSERT_TRUE(cell.isValid()) << row << "," << col;
    ClickAt(grid, cell.center());
}

// Chooses an entry of a menu of the menu bar with the mouse.
inline void ChooseFromMenu(QMenuBar* bar, const QString& menu, const QString& entry) {
    QAction* top = nullptr;
    for (QAction* a : bar->actions())
        if (a->text() == menu) top = a;
    ASSERT_TRUE(top) << menu.toStdString();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(top).center());
    Settle();
    QMenu* popup = top->menu();
    ASSERT_TRUE(popup->isVisible()) << menu.toStdString();
    QAction* item = nullptr;
    for (QAction* a : popup->actions())
        if (a->text() == entry) item = a;
    ASSERT_TRUE(item) << entry.toStdString();
    const QPoint at = popup->actionGeometry(item).center();
    QTest::mouseMove(popup, at);
    QTest::mouseClick(popup, Qt::LeftButton, {}, at);
    Settle();
}

// Scrolls a scroll area by clicks on its scroll bar: on the page area
// after the handle, as far as a number of clicks takes it.
inline void ScrollByClicks(QScrollBar* bar, int clicks) {
    for (int i = 0; i < clicks; ++i) {
        const bool horizontal = bar->orientation() == Qt::Horizontal;
        // Just before the arrow at the far end.
        const int arrow = horizontal ? bar->height() : bar->width();
        const QPoint at = horizontal ? QPoint(bar->width() - arrow - 3, bar->height() / 2)
                                     : QPoint(bar->width() / 2, bar->height() - arrow - 3);
        QTest::mouseClick(bar, Qt::LeftButton, {}, at);
        Settle();
    }
}

}  // namespace yunqi::testing
