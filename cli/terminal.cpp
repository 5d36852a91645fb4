// Whether someone watches.
#include "terminal.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace cli {

bool is_terminal(std::FILE* stream) {
#ifdef _WIN32
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

std::size_t screen_width() {
    if (!is_terminal(stdout)) return 0;
#ifdef _WIN32
    CONSOLE_SCREEN_BUFFER_INFO screen;
    const bool known = GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen) != 0;
    // The last place of a line stays free: to fill it is to begin the next one.
    return known && screen.dwSize.X > 1 ? static_cast<std::size_t>(screen.dwSize.X) - 1 : 0;
#else
    winsize screen = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &screen) == 0 ? screen.ws_col : 0;
#endif
}

}  // namespace cli
