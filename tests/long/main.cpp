// The checks that take long: zel_long_checks faults|sizes|large|threads [SECONDS of one call [CALL [FIRST failure]]]
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "longChecks.h"
#include "zel/zel.hpp"

std::FILE* zeltest::report() {
    static std::FILE* const file = fdopen(dup(STDOUT_FILENO), "w");
    return file;
}

int main(int argc, char** argv) {
    const std::string check = argc > 1 ? argv[1] : "";
    const double seconds = argc > 2 ? std::atof(argv[2]) : 30;
    const std::string name = argc > 3 ? argv[3] : "";
    const long first = argc > 4 ? std::atol(argv[4]) : 0;
    setenv("ZEL_ASSETS", ZEL_ASSETS, 1);
    auto settings = libzel::sized<zel_settings>();
    settings.threads = check == "threads" ? 2 : 3;
    settings.gl = ZEL_GL_NEVER;
    const libzel::Context context = libzel::createContext(&settings);
    if (!zeltest::report() || !std::freopen("/dev/null", "w", stdout)) return 2;
    if (!std::freopen("/dev/null", "w", stderr)) return 2;
    bool isSound = false;
    if (check != "faults" && check != "sizes" && check != "large" && check != "threads") {
        std::fputs("one of faults, sizes, large, threads is needed\n", zeltest::report());
        return 2;
    }
    if (check == "faults") isSound = zeltest::checkFaults(context.get(), seconds, name, first);
    if (check == "sizes") isSound = zeltest::checkSizes(context.get(), seconds, name);
    if (check == "large") isSound = zeltest::checkLarge(context.get(), name);
    if (check == "threads") isSound = zeltest::checkThreads(context.get(), name);
    std::fprintf(zeltest::report(), "%s: %s\n", check.c_str(),
                 isSound ? "all as it must be" : "FAULTS were found");
    return isSound ? 0 : 1;
}
