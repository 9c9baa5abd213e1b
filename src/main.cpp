#include <QApplication>
#include <clocale>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    return 0;
}
