// The few names of POSIX that the tests' helpers use, for the build for Windows: included before every test.
#pragma once

#include <direct.h>
#include <io.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

/// The C runtime hands it on to the system, where the library looks. It cannot tell an empty variable from none,
/// the system can.
extern "C" __declspec(dllimport) int __stdcall SetEnvironmentVariableA(const char* name, const char* value);

inline int setenv(const char* name, const char* value, int) {
    return _putenv_s(name, value) == 0 && SetEnvironmentVariableA(name, value) ? 0 : -1;
}
inline int unsetenv(const char* name) {
    return _putenv_s(name, "") == 0 && (SetEnvironmentVariableA(name, nullptr), true) ? 0 : -1;
}

inline char* mkdtemp(char* path) {
    std::random_device random;
    for (char *end = path + std::strlen(path), *at = end - 6; at < end; ++at)
        *at = static_cast<char>('a' + random() % 26);
    return _mkdir(path) == 0 ? path : nullptr;
}

inline std::ptrdiff_t pread(int file, void* into, std::size_t size, long at) {
    const long before = _lseek(file, 0, SEEK_CUR);
    if (_lseek(file, at, SEEK_SET) < 0) return -1;
    const int got = _read(file, into, static_cast<unsigned>(size));
    _lseek(file, before, SEEK_SET);
    return got;
}
