#include "cli/os/Console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

#ifndef ENABLE_VIRTUAL_TERMINAL_PROCESSING
#define ENABLE_VIRTUAL_TERMINAL_PROCESSING 0x0004
#endif

namespace yunqi {

namespace {

// A console, not a file or a pipe: the progress line's "\r\033[K" is carried
// out rather than shown, and the bytes reach the console as they are, so that
// the runtime's text mode doesn't cut or convert the UTF-8 of 计算中.
void PrepareConsole(FILE* stream, DWORD which) {
    const HANDLE console = GetStdHandle(which);
    DWORD mode = 0;
    if (console == INVALID_HANDLE_VALUE || !GetConsoleMode(console, &mode)) return;
    SetConsoleMode(console, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    std::fflush(stream);
    _setmode(_fileno(stream), _O_BINARY);
}

}  // namespace

void UseUtf8Console() {
    ::SetConsoleOutputCP(CP_UTF8);
    PrepareConsole(stdout, STD_OUTPUT_HANDLE);
    PrepareConsole(stderr, STD_ERROR_HANDLE);
}

bool IsTerminal(FILE* stream) { return _isatty(_fileno(stream)); }

}  // namespace yunqi
