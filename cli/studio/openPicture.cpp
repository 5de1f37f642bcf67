#include "cli/studio/openPicture.h"

#include <algorithm>
#include <utility>

#include "cli/library.h"
#include "cli/studio/pixels.h"

namespace zelcli::studio {

namespace {

int longestSide(const Image& image) {
    return std::max(image.width, image.height);
}

}  // namespace

OpenPicture::OpenPicture(int id, std::string name, LoadedPicture loaded, int screenSide)
    : m_id(id),
      m_name(std::move(name)),
      m_notes(std::move(loaded.notes)),
      m_whole(std::move(loaded.image)),
      m_isWhole(longestSide(m_whole) <= screenSide),
      m_screen(m_isWhole ? Image() : reducedTo(m_whole, screenSide)),
      m_previews(m_isWhole ? 1.0 : static_cast<double>(screenSide) / longestSide(m_whole), true),
      m_results(1.0, false) {}

const zel_faces* OpenPicture::faces() {
    if (m_searched) return m_faces.get();
    zel_faces* found = nullptr;
    const zel_pixels pixels = pixelsOf(m_whole);
    if (zel_find_faces(library(), &pixels, &found) != ZEL_OK) m_whyNoFaces = zel_message();
    m_faces.reset(found);
    m_searched = true;
    return found;
}

zel_faces* OpenPicture::facesForText() {
    faces();
    return m_faces.get();
}

const Mask& OpenPicture::depth(const WorkQueue::Job& job) {
    if (!m_depth.samples.empty()) return m_depth;
    Image copy = screen();
    Mask depth{copy.width, copy.height, std::vector<unsigned char>(copy.rgba.size() / 4)};
    const zel_pixels pixels = pixelsOf(copy), out = pixelsOf(depth);
    auto options = libzel::sized<zel_depth_options>();
    options.progress_user = const_cast<WorkQueue::Job*>(&job);
    options.progress = [](void* user, double fraction, const char* stage) {
        const auto& told = *static_cast<const WorkQueue::Job*>(user);
        told.tell(stage, fraction);
        return static_cast<int>(told.cancelled());
    };
    const zel_status status = zel_estimate_depth(library(), &pixels, &options, &out);
    job.requireWanted();
    require(status);
    m_depth = std::move(depth);
    return m_depth;
}

const Image& OpenPicture::preview(const Chain& chain, const Sources& sources, const WorkQueue::Job& job,
                                  std::vector<StepReport>& reports) {
    return m_previews.run(screen(), chain, sources, job, reports);
}

const Image& OpenPicture::result(const Chain& chain, const Sources& sources, const WorkQueue::Job& job,
                                 std::vector<StepReport>& reports) {
    return m_results.run(m_whole, chain, sources, job, reports);
}

}  // namespace zelcli::studio
