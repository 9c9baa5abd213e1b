#include <gtest/gtest.h>

#include <clocale>

#include "shell/widgets/Application.h"

int main(int argc, char** argv) {
    // Test discovery runs the binary outside CTest's environment too.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The desktop program's application object: run-time errors that event
    // handlers let through reach the handler a test installs.
    yunqi::Application app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
