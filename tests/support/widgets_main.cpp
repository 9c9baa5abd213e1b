#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>


int main(int argc, char** argv) {
    // Test discovery runs the binary outside CTest's environment too.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
