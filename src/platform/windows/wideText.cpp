#include "platform/windows/wideText.h"

#include <windows.h>

namespace zellab::platform {

std::wstring wideText(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string utf8Text(std::wstring_view wide) {
    const int units = static_cast<int>(wide.size());
    std::string text(static_cast<std::size_t>(
                         WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), static_cast<int>(text.size()), nullptr,
                        nullptr);
    return text;
}

std::string lastErrorText() {
    const DWORD error = GetLastError();
    wchar_t wide[512];
    const DWORD units = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                       error, 0, wide, static_cast<DWORD>(std::size(wide)), nullptr);
    std::string text = utf8Text({wide, units});
    text.erase(text.find_last_not_of("\r\n. ") + 1);
    return text.empty() ? "error " + std::to_string(error) : text;
}

}  // namespace zellab::platform
