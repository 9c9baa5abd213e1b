#include "cli/os/Console.h"

namespace yunqi {

void UseUtf8Console() {}

}  // namespace yunqi
