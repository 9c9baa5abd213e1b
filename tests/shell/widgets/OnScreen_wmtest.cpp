// The windows on an operator's screen: run by tests/shell/under-window-manager
// at the sizes offices have, with openbox drawing frames and title bars. The
// main window is shown as the program shows it, each window is chosen from
// the menu with the mouse, and then everything drawn must be on the screen,
// whole, and clear of everything else.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiSubWindow>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "core/Dialogs.h"
#include "core/RuntimeError.h"
#include "frame/widgets/EventDriver.h"
#include "support/TestDatabase.h"

using namespace yunqi;
using namespace yunqi::testing;

namespace {

// Events run for a while: the window manager answers in its own time.
void RunEventsFor(int ms) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 20);
    Settle();
}

QRect GlobalBox(const QWidget* w) { return QRect(w->mapToGlobal(QPoint(0, 0)), w->size()); }

// What a control shows: a label its text as aligned in its box, anything
// else its box.
QRect DrawnBox(const QWidget* w) {
    const auto* label = qobject_cast<const QLabel*>(w);
    if (!label || label->text().isEmpty() || label->wordWrap()) return GlobalBox(w);
    const QRect inside = label->contentsRect();
    const QSize text = label->sizeHint().boundedTo(inside.size());
    const QRect drawn =
        QStyle::alignedRect(label->layoutDirection(), label->alignment(), text, inside);
    return QRect(label->mapToGlobal(drawn.topLeft()), drawn.size());
}

QString Name(const QWidget* w) {
    const QString own = w->objectName().isEmpty() ? QString::fromUtf8(w->metaObject()->className())
                                                  : w->objectName();
    const QWidget* window = w->window();
    return window == w ? own : window->objectName() + QLatin1Char('/') + own;
}

// The controls of the program: what carries a name of ours.
std::vector<QWidget*> Controls(QWidget* root) {
    std::vector<QWidget*> found;
    for (QWidget* w : root->findChildren<QWidget*>())
        if (!w->objectName().isEmpty() && !w->objectName().startsWith(QLatin1String("qt_")) &&
            w->isVisible())
            found.push_back(w);
    return found;
}

struct Window {
    std::string name;
    QString menu;
    QString entry;
};

// Every report's window, and the about window.
std::vector<Window> Windows() {
    std::vector<Window> windows;
    for (const ReportDefinition* report : AllReports())
        windows.push_back({report->command.toStdString(), "统计报表", report->menuEntry});
    windows.push_back({"about", "关于", "关于软件"});
    return windows;
}

class OnScreen : public ::testing::TestWithParam<Window> {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        SetRuntimeErrorHandler([](const RuntimeError& e) {
            ADD_FAILURE() << "run-time error " << e.number() << " "
                          << e.description().toStdString();
        });
    }
    void TearDown() override {
        main.reset();
        SetRuntimeErrorHandler(nullptr);
        SetAppDialogs(nullptr);
    }
    RecordingDialogs dialogs;
    TestDatabase db;
    std::unique_ptr<DatabaseSession> session;
    std::unique_ptr<MainWindow> main;
};

TEST_P(OnScreen, EveryControlWholeOnTheScreenAndClearOfTheOthers) {
    ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb"))
        << "run under tests/shell/under-window-manager";
    FillGoldenLedger(db);
    session = db.Session();
    main = std::make_unique<MainWindow>(ReportWindows(*session));
    main->ShowOnScreen();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(main.get()));
    RunEventsFor(1500);

    const Window& window = GetParam();
    const QString& entry = window.entry;
    ChooseFromMenu(main->menuBar(), window.menu, entry);
    RunEventsFor(500);
    ASSERT_TRUE(main->OpenWindow(entry));

    const QRect screen = main->screen()->availableGeometry();
    const QString size = QStringLiteral("%1x%2").arg(screen.width()).arg(screen.height());
    SCOPED_TRACE(size.toStdString() + " " + entry.toStdString());
    const QRect frame = main->frameGeometry();
    EXPECT_NE(frame, main->geometry()) << "no window manager frame";
    EXPECT_TRUE(screen.contains(frame)) << "main window frame " << frame.x() << "," << frame.y()
                                        << " " << frame.width() << "x" << frame.height();

    const std::vector<QWidget*> controls = Controls(main.get());
    EXPECT_GE(controls.size(), 5u);
    for (QWidget* c : controls) {
        const QRect drawn = DrawnBox(c);
        EXPECT_TRUE(screen.contains(drawn)) << Name(c).toStdString() << " off the screen";
        // Whole: inside every container up to the window, nothing cut off.
        for (QWidget* p = c->parentWidget(); p && !c->isWindow(); p = p->parentWidget()) {
            EXPECT_TRUE(GlobalBox(p).contains(drawn))
                << Name(c).toStdString() << " cut by " << Name(p).toStdString();
            if (p->isWindow()) break;
        }
        if (const auto* label = qobject_cast<QLabel*>(c)) {
            const QRect inside = label->contentsRect();
            if (label->wordWrap())
                EXPECT_LE(label->heightForWidth(inside.width()), inside.height())
                    << Name(c).toStdString() << " text cut";
            else
                EXPECT_LE(label->sizeHint().width(), inside.width())
                    << Name(c).toStdString() << " text cut";
        }
    }
    // Controls clear of each other; a panel is only the ground others lie on.
    const auto isPanel = [&](QWidget* w) {
        return w->metaObject() == &QWidget::staticMetaObject &&
               std::any_of(controls.begin(), controls.end(),
                           [w](QWidget* c) { return c->parentWidget() == w; });
    };
    for (std::size_t i = 0; i < controls.size(); ++i)
        for (std::size_t j = i + 1; j < controls.size(); ++j) {
            QWidget *a = controls[i], *b = controls[j];
            if (a->isAncestorOf(b) || b->isAncestorOf(a) || isPanel(a) || isPanel(b)) continue;
            EXPECT_FALSE(DrawnBox(a).intersects(DrawnBox(b)))
                << Name(a).toStdString() << " overlaps " << Name(b).toStdString();
        }
    // A grid of shares shows both of them without scrolling.
    if (auto* ratios = main->findChild<FlexGridView*>(QStringLiteral("MSFlexGrid2"))) {
        const int cols = ratios->model()->columnCount();
        for (int c = 0; c < cols; ++c)
            if (ratios->columnWidth(c) > 0)
                EXPECT_LE(ratios->columnViewportPosition(c) + ratios->columnWidth(c),
                          ratios->viewport()->width())
                    << "MSFlexGrid2 column " << c << " hidden";
    }
}

INSTANTIATE_TEST_SUITE_P(Windows, OnScreen, ::testing::ValuesIn(Windows()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
