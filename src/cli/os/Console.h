#pragma once

#include <cstdio>

namespace yunqi {

// The terminal shows the UTF-8 the program writes: a no-op where terminals
// take UTF-8 anyway; on Windows the console's output code page is switched
// and its escape sequences turned on (Windows 10 and later).
void UseUtf8Console();

// A terminal, not a file or a pipe: the progress line is shown there alone.
bool IsTerminal(FILE* stream);

}  // namespace yunqi
