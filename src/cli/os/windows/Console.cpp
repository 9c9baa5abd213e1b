#include "cli/os/Console.h"

#include <windows.h>

namespace yunqi {

void UseUtf8Console() { ::SetConsoleOutputCP(CP_UTF8); }

}  // namespace yunqi
