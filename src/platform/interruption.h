#pragma once

namespace zellab::platform {

/// While it lives, the first interrupt, termination or hang-up asks the work to end at the next good place; the second
/// ends the process as ever. Signals that the process ignores stay ignored. One object at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Whether such a signal came. Any thread.
    static bool asked();

    /// Ends the process by the signal that came, so that its parent sees it; returns where none did.
    static void finish();
};

}  // namespace zellab::platform
