#pragma once

namespace yunqi {

// The terminal shows the UTF-8 the program writes: a no-op where terminals
// take UTF-8 anyway; on Windows the console's output code page is switched.
void UseUtf8Console();

}  // namespace yunqi
