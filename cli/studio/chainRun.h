#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cli/files/image.h"
#include "cli/studio/chain.h"
#include "cli/studio/planes.h"
#include "cli/studio/workQueue.h"

namespace zelcli::studio {

/// What became of one step.
struct StepReport {
    std::string state;  // "done", "off", "waiting" (for a value, a mask, a second picture) or "failed"
    std::string why;
    double seconds = 0;
};

/// What a chain may ask for while it runs.
struct Sources {
    Planes* planes = nullptr;
    /// Faces of the picture as it was read; found when first asked for.
    std::function<const zel_faces*()> foundFaces;
    /// A picture of the folder.
    std::function<Image(const std::string&)> second;
    /// A file of the folder, as a path.
    std::function<std::string(const std::string&)> file;
};

/// Runs chains over one picture at one size, and keeps what the steps gave: a chain that begins like the last one
/// goes on where they part. Lengths in pixels are told for the picture's own size and scaled to this one.
class ChainRun {
public:
    /// @param scale  this size to the picture's own
    /// @param keeping  whether the result of every step is kept, or that of the last alone
    ChainRun(double scale, bool keeping) : m_scale(scale), m_keeping(keeping) {}

    /// The result lives until the next run. Throws Superseded, Refused (a mask that is gone).
    /// @param original  must be the same in every call
    const Image& run(const Image& original, const Chain& chain, const Sources& sources,
                     const WorkQueue::Job& job, std::vector<StepReport>& reports);

private:
    struct Result {
        std::string key;  // of the step and of all before it
        Image image;
        StepReport report;
    };

    StepReport apply(const Step& step, const Chain& chain, const std::string& key, Image& image,
                     const Sources& sources, const WorkQueue::Job& job, std::size_t index);
    libzel::Values valuesOf(const Step& step, const Sources& sources) const;

    const double m_scale;
    const bool m_keeping;
    std::vector<Result> m_results;
    /// Depth that an effect estimated, so that it need not do so again while sliders move.
    std::map<std::string, Mask> m_depths;
};

}  // namespace zelcli::studio
