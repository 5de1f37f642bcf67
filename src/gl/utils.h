#pragma once

namespace zellab::gl {

class Utils {
public:
    /// Loads the OpenGL entry points through the current context. False with a line in the log where that is
    /// impossible, or the context is older than version 3.3.
    static bool initializeGlew();
    /// Of the current context, as major * 100 + minor: 330, 460. -1 without a context.
    static int shadingLanguageVersion();
    /// The same from a driver's text; -1 for null and for a text without a digit.
    static int parseShadingLanguageVersion(const char* text);
};

/// Whether a context is current on this thread; its version plays no part.
bool checkGlEnv();

}  // namespace zellab::gl
