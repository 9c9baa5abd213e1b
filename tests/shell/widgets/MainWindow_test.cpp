#include "shell/widgets/MainWindow.h"

#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QPushButton>

#include "core/Dialogs.h"
#include "frame/widgets/EventDriver.h"
#include "shell/WindowPlacement.h"
#include "shell/widgets/Banner.h"
#include "shell/widgets/QtTranslations.h"
#include "support/GoldenText.h"

using namespace yunqi;
using namespace yunqi::testing;

TEST(BannerTest, SliceRepeatsOnlyWhereTheWindowIsWide) {
    // A design with a marked slice at 8850 twips (590 px) and a distinct tail.
    QImage design(1028, 54, QImage::Format_RGB888);
    design.fill(Qt::black);
    for (int x = 590; x < 610; ++x)
        for (int y = 0; y < 54; ++y) design.setPixelColor(x, y, Qt::red);
    // Narrower than 12850 twips: the design, then the final piece at width - 4000.
    // Wide: the slice repeats from 9150 twips (610 px) on.
    const QImage narrow = Banner::Paint(design, 800), wide = Banner::Paint(design, 1600);
    for (const auto& [image, x, colour] : std::vector<std::tuple<const QImage*, int, QColor>>{
             {&narrow, 540, Qt::red},    // the tail starts at 533 px
             {&narrow, 600, Qt::black},  // no slice repeated
             {&narrow, 20, Qt::black},
             {&wide, 615, Qt::red},
             {&wide, 1000, Qt::red}})
        EXPECT_EQ(image->pixelColor(x, 10), colour) << x << (image == &wide ? " wide" : "");
}

// MDI.BMP beside the program is one picture stretched over the client area
// from the first show on: its marked corners at the area's corners.
TEST(BackdropTest, StretchedFromTheFirstShow) {
    const QString file = QCoreApplication::applicationDirPath() + "/MDI.BMP";
    QImage picture(40, 30, QImage::Format_RGB888);
    picture.fill(Qt::blue);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j) {
            picture.setPixelColor(i, j, Qt::red);
            picture.setPixelColor(39 - i, 29 - j, Qt::green);
        }
    ASSERT_TRUE(picture.save(file, "BMP"));
    MainWindow main(std::map<QString, MainWindow::WindowFactory>{});
    QFile::remove(file);
    main.resize(900, 700);
    main.show();
    Settle();
    const QImage shown = main.Area()->viewport()->grab().toImage();
    const int w = shown.width(), h = shown.height();
    // A picture tiled at its own size, or at 100 by 30, puts a corner mark at (201, 151).
    for (const auto& [x, y, colour] :
         std::vector<std::tuple<int, int, QColor>>{{2, 2, Qt::red},
                                                   {w - 3, h - 3, Qt::green},
                                                   {201, 151, Qt::blue},
                                                   {w / 2, h / 2, Qt::blue}})
        EXPECT_EQ(shown.pixelColor(x, y), colour) << x << "," << y;
}

// The menu bar as the operator reads it: menus and entries, in their order.
TEST(MainMenuTest, MenusAndEntriesInOrder) {
    MainWindow main(std::map<QString, MainWindow::WindowFactory>{});
    QStringList shown;
    for (QAction* menu : main.menuBar()->actions()) {
        shown << menu->text();
        for (QAction* entry : menu->menu()->actions()) shown << "  " + entry->text();
    }
    ExpectGolden((shown.join('\n') + '\n').toUtf8(),
                 QStringLiteral(YUNQI_TEST_DIR "/fixtures/golden/main-window/menu.txt"));
}

namespace {

// The main window with no report, for the shell's own windows.
class AboutWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetAppDialogs(&dialogs);
        main = ShownMainWindow({}, {1200, 800});
    }
    void TearDown() override {
        main.reset();
        SetAppDialogs(nullptr);
    }
    QWidget* OpenFromMenu() {
        ChooseFromMenu(main->menuBar(), QStringLiteral("关于"), QStringLiteral("关于软件"));
        return main->OpenWindow(QStringLiteral("关于软件"));
    }
    // Where CenterInMainWindow puts a frame in the MDI area.
    QPoint Centred(QWidget* frame) const {
        const QSize client = main->Area()->viewport()->size();
        const WindowPlace p = CenterInMainWindow(float(client.width()), float(client.height()),
                                                 float(frame->width()), float(frame->height()));
        return QPoint(int(p.Left), int(p.Top));
    }

    RecordingDialogs dialogs;
    std::unique_ptr<MainWindow> main;
};

}  // namespace

TEST_F(AboutWindowTest, OpensCentredIsRaisedNotMovedAndCmdOKClosesIt) {
    QWidget* about = OpenFromMenu();
    ASSERT_TRUE(about);
    auto* frame = qobject_cast<QMdiSubWindow*>(about->parentWidget());
    ASSERT_TRUE(frame);
    EXPECT_FALSE(frame->isMaximized());
    EXPECT_GE(about->width(), about->sizeHint().width());
    EXPECT_GE(about->height(), about->sizeHint().height());
    EXPECT_EQ(frame->pos(), Centred(frame));

    frame->move(10, 20);
    main->Area()->setActiveSubWindow(nullptr);
    Settle();
    EXPECT_EQ(OpenFromMenu(), about);
    EXPECT_EQ(frame->pos(), QPoint(10, 20));
    EXPECT_EQ(main->Area()->activeSubWindow(), frame);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);

    // Closed by cmdOK and opened again: a fresh window, centred.
    about->findChild<QLabel*>("lblTitle")->setText("changed");
    Click(about->findChild<QPushButton*>("cmdOK"));
    EXPECT_EQ(main->OpenWindow(QStringLiteral("关于软件")), nullptr);
    EXPECT_TRUE(main->Area()->subWindowList().isEmpty());
    about = OpenFromMenu();
    ASSERT_TRUE(about);
    EXPECT_EQ(main->Area()->subWindowList().size(), 1);
    EXPECT_EQ(about->findChild<QLabel*>("lblTitle")->text(), "云栖账房系统的一部分");
    EXPECT_EQ(about->parentWidget()->pos(), Centred(about->parentWidget()));
    Click(about->findChild<QPushButton*>("cmdSysInfo"));
    EXPECT_EQ(dialogs.texts(), QStringList{"此时系统信息不可用"});
    EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::None);
}

// Qt's own buttons and dialogs speak Chinese like the rest of the program.
TEST(QtTranslationsTest, StandardButtonsAndTheSaveDialogInChinese) {
    QTranslator* translator = InstallQtTranslations(*qApp);
    ASSERT_TRUE(translator) << "qt6-translations-l10n is missing";
    QMessageBox box;
    box.setStandardButtons(QMessageBox::Ok | QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(box.button(QMessageBox::Ok)->text(), "确定");
    // With their keys: "是(&Y)", "否(&N)".
    EXPECT_TRUE(box.button(QMessageBox::Yes)->text().startsWith("是"));
    EXPECT_TRUE(box.button(QMessageBox::No)->text().startsWith("否"));
    QFileDialog dialog(nullptr, QString(), QString(), "电子表 (*.xlsx)");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    auto* buttons = dialog.findChild<QDialogButtonBox*>();
    ASSERT_TRUE(buttons);
    QStringList texts;
    for (QAbstractButton* b : buttons->buttons()) texts << b->text();
    EXPECT_TRUE(texts.join("|").contains("保存")) << texts.join("|").toStdString();
    QCoreApplication::removeTranslator(translator);
    delete translator;
}

// The about box as a dialog is used: Enter presses the focused button, Esc
// closes it; it keeps its size and carries the program's icon.
TEST_F(AboutWindowTest, EnterAndEscFixedSizeAndTheProgramsIcon) {
    QWidget* about = OpenFromMenu();
    ASSERT_TRUE(about);
    auto* frame = qobject_cast<QMdiSubWindow*>(about->parentWidget());
    EXPECT_EQ(about->minimumSize(), about->maximumSize());
    EXPECT_FALSE(frame->windowFlags() & Qt::WindowMaximizeButtonHint);
    EXPECT_FALSE(about->windowIcon().isNull());
    EXPECT_EQ(about->windowIcon().cacheKey(), QApplication::windowIcon().cacheKey());
    EXPECT_FALSE(about->findChild<QLabel*>("Picture1")->pixmap().isNull());

    auto* info = about->findChild<QPushButton*>("cmdSysInfo");
    info->setFocus();
    QTest::keyClick(info, Qt::Key_Return);
    Settle();
    EXPECT_EQ(dialogs.texts(), QStringList{"此时系统信息不可用"});
    QTest::keyClick(info, Qt::Key_Escape);
    Settle();
    EXPECT_EQ(main->OpenWindow(QStringLiteral("关于软件")), nullptr);
    about = OpenFromMenu();
    QTest::keyClick(about->findChild<QPushButton*>("cmdOK"), Qt::Key_Enter);
    Settle();
    EXPECT_EQ(main->OpenWindow(QStringLiteral("关于软件")), nullptr);
}

// A minimised window chosen again from the menu comes back.
TEST_F(AboutWindowTest, AMinimisedWindowIsRestoredByTheMenu) {
    QWidget* about = OpenFromMenu();
    auto* frame = qobject_cast<QMdiSubWindow*>(about->parentWidget());
    frame->showMinimized();
    Settle();
    ASSERT_TRUE(frame->isMinimized());
    EXPECT_EQ(OpenFromMenu(), about);
    EXPECT_FALSE(frame->isMinimized());
    EXPECT_TRUE(about->isVisible());
}

// Qt's own texts for dates are Chinese under any LANG (the tests run with C.UTF-8).
TEST(QtTranslationsTest, CalendarAndDatesInChinese) {
    ASSERT_EQ(qgetenv("LANG"), "C.UTF-8");
    QCalendarWidget calendar;
    EXPECT_EQ(calendar.locale().monthName(1), "一月");
    EXPECT_EQ(calendar.locale().dayName(1, QLocale::ShortFormat), "周一");
    EXPECT_EQ(QLocale::system().monthName(1), "一月");
}
