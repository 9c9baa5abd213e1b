#include "cli/os/Arguments.h"

namespace yunqi {

std::optional<QByteArray> ArgumentNotAsGiven(int, char**) { return std::nullopt; }

}  // namespace yunqi
