#include "shell/widgets/MainWindow.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QMdiSubWindow>

#include "core/Dialogs.h"
#include "shell/widgets/AboutWindow.h"
#include "shell/widgets/Banner.h"

using namespace yunqi;

TEST(BannerTest, SliceRepeatsOnlyWhereTheWindowIsWide) {
    // A design with a marked slice at 8850 twips (590 px) and a distinct tail.
    QImage design(1028, 54, QImage::Format_RGB888);
    design.fill(Qt::black);
    for (int x = 590; x < 610; ++x)
        for (int y = 0; y < 54; ++y) design.setPixelColor(x, y, Qt::red);
    // Narrower than 12850 twips: the design, then the final piece at width - 4000.
    const QImage narrow = Banner::Paint(design, 800);
    EXPECT_EQ(narrow.pixelColor(540, 10), QColor(Qt::red));    // the tail starts at 533 px
    EXPECT_EQ(narrow.pixelColor(600, 10), QColor(Qt::black));  // no slice repeated
    EXPECT_EQ(narrow.pixelColor(20, 10), QColor(Qt::black));
    // Wide: the slice repeats from 9150 twips (610 px) on.
    const QImage wide = Banner::Paint(design, 1600);
    EXPECT_EQ(wide.pixelColor(615, 10), QColor(Qt::red));
    EXPECT_EQ(wide.pixelColor(1000, 10), QColor(Qt::red));
}

TEST(MainWindowTest, MenuAboutAndOneInstance) {
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    {
        MainWindow main({});
        main.show();
        QStringList menus;
        for (QAction* a : main.findChildren<QAction*>())
            if (!a->objectName().isEmpty()) menus << a->objectName();
        for (const char* name :
             {"统计报表", "停车费明细表", "增值税开票明细表", "增值税预开明细表", "开票票据核对表",
              "退出系统", "退出", "关于", "关于软件", "联系我们"})
            EXPECT_TRUE(menus.contains(QString::fromUtf8(name))) << name;
        EXPECT_EQ(main.windowTitle(), "云栖账房报表");

        main.findChild<QAction*>("联系我们")->trigger();
        EXPECT_TRUE(dialogs.messages.empty());
        main.Choose("关于软件");
        QWidget* about = main.OpenWindow("关于软件");
        ASSERT_TRUE(about);
        main.Choose("关于软件");
        EXPECT_EQ(main.OpenWindow("关于软件"), about);
        EXPECT_EQ(about->windowTitle(), "关于云栖账房系统");
        EXPECT_EQ(about->findChild<QLabel*>("Label7")->text(), "系统信息设置系统1.0.0");
        static_cast<AboutWindow*>(about)->ClickSysInfo();
        EXPECT_EQ(dialogs.texts(), QStringList{"此时系统信息不可用"});
        EXPECT_EQ(dialogs.messages[0].icon, MsgIcon::None);
    }
    SetAppDialogs(nullptr);
}
