#include <gtest/gtest.h>

#include <QCoreApplication>
#include <clocale>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
