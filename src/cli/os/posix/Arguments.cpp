#include "cli/os/Arguments.h"

#include <QString>

namespace yunqi {

std::optional<QByteArray> ArgumentNotAsGiven(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray given(argv[i]);
        if (QString::fromUtf8(given).toUtf8() == given) continue;
        QByteArray shown;
        for (const char byte : given)
            shown +=
                uchar(byte) >= 0x20 && uchar(byte) < 0x7f
                    ? QByteArray(1, byte)
                    : "\\x" + QByteArray::number(uchar(byte), 16).rightJustified(2, '0').toUpper();
        return shown;
    }
    return std::nullopt;
}

}  // namespace yunqi
