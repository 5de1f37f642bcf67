#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/randomImage.h"
#include "zel/zel.h"

/// Every call of both libraries as one list, for the checks that take long.

namespace zeltest {

/// One call on buffers of its own.
class Attempt {
public:
    virtual ~Attempt() = default;
    /// The call's answer, true where it has none; of the C interface whether it is ZEL_OK. Throws std::logic_error where an answer and what
    /// came with it do not belong together.
    virtual bool run() = 0;
    /// What the call may write.
    virtual Bytes written() { return {}; }
    virtual bool isUntouched() { return true; }
    /// Whether everything beside the buffers is as it was.
    virtual bool isIntact() { return true; }
};

struct Deed {
    std::string name;
    std::function<std::unique_ptr<Attempt>(int width, int height)> prepare;
    bool isOfInterface = false;  // a failed call leaves everything as it was
    bool drawsOnRand = false;    // two at once give other bytes
    bool endsBeneath = false;    // a library of headers alone may end the process where it has no memory
};

/// What changes a picture: the operations of the C++ library, and the effects of the C interface as "effect NAME".
std::vector<Deed> pictureDeeds(zel_context* context);

/// Everything else that may take memory: readers, makers, finders, objects.
std::vector<Deed> otherDeeds(zel_context* context);

}  // namespace zeltest
