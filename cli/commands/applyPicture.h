#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/commands/applyChain.h"
#include "cli/commands/applyPlan.h"
#include "cli/run/batchReport.h"
#include "cli/run/messages.h"

namespace zelcli {

/// What one picture goes through: read once, searched for faces once, changed by every step, written once.
class PictureWork {
public:
    PictureWork(const ApplyOptions& options, const std::vector<ChainStep>& chain,
                const zel_faces* sharedFaces, Messages& messages)
        : m_options(options), m_chain(chain), m_sharedFaces(sharedFaces), m_messages(messages) {}

    /// Does it, and tells by `outcome` whether the picture was done or skipped. Throws Failure; throws Interrupted where
    /// a signal asked for the end.
    void run(std::size_t index, const ApplyItem& item, Outcome& outcome) const;

    struct Interrupted {};

private:
    struct Planes;
    bool isThereAlready(const ApplyItem& item, Outcome& outcome) const;
    /// The faces for all steps; the outcome tells where the picture is to be skipped.
    libzel::Faces facesFor(std::size_t index, const ApplyItem& item, Image& image, Outcome& outcome) const;
    libzel::Faces foundFaces(std::size_t index, Image& image, Outcome& outcome) const;
    libzel::Faces chosen(const zel_faces* all) const;
    void applyStep(std::size_t index, std::size_t step, Image& image, const zel_faces* faces, Planes& planes,
                   Outcome& outcome) const;
    bool copyFile(const ApplyItem& item, const Image& image) const;
    void write(const ApplyItem& item, const Image& image, Outcome& outcome) const;
    void note(Outcome& outcome, const std::string& file, const std::string& text) const;
    bool usesFaces() const;
    bool needsFaces() const;

    const ApplyOptions& m_options;
    const std::vector<ChainStep>& m_chain;
    const zel_faces* m_sharedFaces;  // of --faces FILE; null: none
    Messages& m_messages;
};

}  // namespace zelcli
