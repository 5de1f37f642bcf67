#include "platform/programStart.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdlib>

#include "platform/windows/wideText.h"

/// Of the C runtime: the arguments, where asked for with `*` and `?` replaced by the files that match.
extern "C" int __wgetmainargs(int* count, wchar_t*** arguments, wchar_t*** environment, int matches,
                              int* mode);

namespace zellab::platform {

namespace {

UINT g_codePage = 0;  // of the console before this program

void openMissingStreams() {
    for (const int descriptor : {0, 1, 2}) {
        if (_get_osfhandle(descriptor) >= 0) continue;
        const int nothing = _open("NUL", _O_RDWR);
        if (nothing < 0) std::_Exit(1);
        if (nothing == descriptor) continue;
        _dup2(nothing, descriptor);
        _close(nothing);
    }
}

/// The console outlives the program: what was set is set back.
void useUtf8() {
    g_codePage = GetConsoleOutputCP();
    if (g_codePage == 0) return;  // no console
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(g_codePage); });
}

void takeControlSequences(DWORD stream) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode)) SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

void prepareProgram() {
    // A missing disk is told by the program and in no window of the system.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    openMissingStreams();
    for (const int descriptor : {0, 1, 2}) _setmode(descriptor, _O_BINARY);
    useUtf8();
    takeControlSequences(STD_OUTPUT_HANDLE);
    takeControlSequences(STD_ERROR_HANDLE);
}

std::vector<std::string> programArguments(int, char**) {
    // Those of main() have lost what the system's code page lacks.
    int count = 0, mode = 0;
    wchar_t **arguments = nullptr, **environment = nullptr;
    if (__wgetmainargs(&count, &arguments, &environment, 1, &mode) != 0) return {};
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) texts.push_back(utf8Text(arguments[i]));
    return texts;
}

}  // namespace zellab::platform
