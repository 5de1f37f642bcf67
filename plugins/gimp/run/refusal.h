#pragma once

#include <stdexcept>

namespace zelgimp {

/// What cannot be done, as a sentence for the user.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace zelgimp
