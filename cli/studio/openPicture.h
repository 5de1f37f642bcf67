#pragma once

#include <string>
#include <vector>

#include "cli/studio/chainRun.h"
#include "cli/studio/pictureFiles.h"
#include "zel/zel.hpp"

namespace zelcli::studio {

/// The picture on the page: as it was read, at screen size, and what chains made of both. On the worker's thread
/// alone.
class OpenPicture {
public:
    /// @param screenSide  the longest side of the copy that previews work on
    OpenPicture(int id, std::string name, LoadedPicture loaded, int screenSide);

    int id() const { return m_id; }
    const std::string& name() const { return m_name; }
    const std::vector<std::string>& notes() const { return m_notes; }
    const Image& whole() const { return m_whole; }
    const Image& screen() const { return m_isWhole ? m_whole : m_screen; }

    /// Those that the library finds in the whole picture, searched for once. Null where it cannot:
    /// `whyNoFaces` tells.
    const zel_faces* faces();
    zel_faces* facesForText();
    const std::string& whyNoFaces() const { return m_whyNoFaces; }

    /// Depth at screen size, as the library estimates it.
    const Mask& depth(const WorkQueue::Job& job);

    /// At screen size, and at full size.
    const Image& preview(const Chain& chain, const Sources& sources, const WorkQueue::Job& job,
                         std::vector<StepReport>& reports);
    const Image& result(const Chain& chain, const Sources& sources, const WorkQueue::Job& job,
                        std::vector<StepReport>& reports);

private:
    const int m_id;
    const std::string m_name;
    std::vector<std::string> m_notes;
    Image m_whole;
    const bool m_isWhole;  // the picture is no larger than the screen's copy would be
    Image m_screen;
    libzel::Faces m_faces;
    bool m_searched = false;
    std::string m_whyNoFaces;
    Mask m_depth;
    ChainRun m_previews, m_results;
};

}  // namespace zelcli::studio
