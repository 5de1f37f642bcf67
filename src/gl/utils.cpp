#include "gl/utils.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>

#include "gl/environment.h"
#include "gl/glApi.h"
#include "gl/glLog.h"

namespace zellab::gl {

bool Utils::initializeGlew() {
    const char* fault = loadEntryPoints();
    if (fault) logEnvironment(kEnvironmentError, "Utils::glew init error: %s\n", fault);
    return !fault;
}

int Utils::shadingLanguageVersion() {
    if (!glUsable()) return -1;
    return parseShadingLanguageVersion(
        reinterpret_cast<const char*>(glCore().getString(GL_SHADING_LANGUAGE_VERSION)));
}

int Utils::parseShadingLanguageVersion(const char* text) {
    if (!text) return -1;
    std::string digits(text);
    const auto isDigit = [](unsigned char c) { return std::isdigit(c) != 0; };
    digits.erase(digits.begin(), std::find_if(digits.begin(), digits.end(), isDigit));
    if (digits.empty()) return -1;
    std::replace(digits.begin(), digits.end(), '.', ' ');
    std::istringstream stream(digits);
    int major = 0, minor = 0;
    stream >> major >> minor;
    return major * 100 + minor;
}

bool checkGlEnv() {
    return EnvironmentHolder::current().isValid();
}

}  // namespace zellab::gl
