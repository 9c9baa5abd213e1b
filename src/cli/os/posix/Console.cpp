#include "cli/os/Console.h"

#include <unistd.h>

namespace yunqi {

void UseUtf8Console() {}

bool IsTerminal(FILE* stream) { return ::isatty(fileno(stream)); }

}  // namespace yunqi
