#include "libzel/persons/subjectDepth.h"

#include <algorithm>
#include <utility>

#include "frame/zel_log.h"
#include "libzel/persons/subjectChoice.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::Byte;
using zellab::Plane;
using zellab::PlaneView;

constexpr Byte kSurelySubject = 192;  // of a mask

int levelOf(PlaneView<const Byte> depth, PlaneView<const Byte> mask, const FaceSet& faces) {
    int level = 0;
    for (const Face& face : faces.faces) level = std::max(level, depthOf(face, depth));
    if (!faces.faces.empty()) return level;
    DepthMedian median;
    for (int y = 0; y < depth.height; ++y)
        for (int x = 0; x < depth.width; ++x)
            if (mask.row(y)[x] >= kSurelySubject) median.add(depth.row(y)[x]);
    return median.value();
}

}  // namespace

std::optional<Subject> subjectFor(zellab::ConstImageView picture, PlaneView<const Byte> depth,
                                  const SubjectQuestion& question) {
    if (question.wish == SubjectWish::none) return std::nullopt;
    if (question.wish == SubjectWish::automatic && question.faces.faces.empty()) {
        ZEL_LOG_INFO("no mask of persons: there is no face");
        return std::nullopt;
    }
    std::string reason;
    auto subject = findSubject(picture, question.faces, depth, question.focus, question.assets, reason);
    if (subject) return subject;
    if (question.wish == SubjectWish::person)
        ZEL_LOG_ERROR("no mask of persons: %s", reason.c_str());
    else
        ZEL_LOG_INFO("no mask of persons: %s", reason.c_str());
    return std::nullopt;
}

void levelSubject(zellab::PortraitDepthPlanes& planes, const Mask& mask, const FaceSet& faces,
                  PlaneView<const Byte> lights) {
    const PlaneView<Byte> depth = planes.refined.view();
    Plane<Byte> scaled(depth.width, depth.height);
    if (!scalePlane(viewOf(mask), scaled.view(), zellab::YuvFilter::box)) return;
    const int level = levelOf(depth, std::as_const(scaled).view(), faces);
    Plane<Byte> most(depth.width, depth.height);
    std::fill_n(most.data(), most.size(), Byte{255});
    if (lights.valid()) scalePlane(lights, most.view(), zellab::YuvFilter::bilinear);
    for (std::size_t i = 0; i < scaled.size(); ++i) {
        Byte& own = planes.refined.data()[i];
        const int subject = std::max<int>(own, level);
        const int ground = std::min({own, planes.unmasked.data()[i], most.data()[i]});
        own = static_cast<Byte>((ground * (255 - scaled.data()[i]) + subject * scaled.data()[i] + 127) / 255);
    }
}

}  // namespace zel
