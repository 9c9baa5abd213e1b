#pragma once

#include <QByteArray>
#include <optional>

namespace yunqi {

// The first argument that would not reach the system as the bytes given,
// shown with its other bytes as \xHH; nothing when every one would. On POSIX
// Qt reads arguments and makes file names as UTF-8: an argument that is no
// UTF-8 (a name typed under a GBK locale) would become another name, and two
// such names one. Windows passes arguments as UTF-16: nothing.
std::optional<QByteArray> ArgumentNotAsGiven(int argc, char** argv);

}  // namespace yunqi
