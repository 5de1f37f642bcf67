#include "libzel/faces/faceRecords.h"

#include <array>
#include <cstring>

namespace zel {

namespace {

constexpr std::size_t kHeadWords = sizeof(ImageCoreFaceInfo) / sizeof(float);
constexpr std::size_t kFaceWords = sizeof(ImageCoreFace) / sizeof(float);

ImageCoreFace recordOf(const Face& face) {
    ImageCoreFace record;
    for (std::size_t i = 0; i < face.rect.size(); ++i) record.rect[i] = face.rect[i];
    for (std::size_t i = 0; i < face.points.size(); ++i) {
        record.points[i][0] = face.points[i].x;
        record.points[i][1] = face.points[i].y;
    }
    return record;
}

}  // namespace

FaceInfoBlock::FaceInfoBlock(const FaceSet& set) : m_words(kHeadWords + kFaceWords * set.faces.size()) {
    const ImageCoreFaceInfo head{static_cast<int>(set.faces.size()), {0, 0}};
    std::memcpy(m_words.data(), &head, sizeof head);
    for (std::size_t i = 0; i < set.faces.size(); ++i) {
        const ImageCoreFace record = recordOf(set.faces[i]);
        std::memcpy(m_words.data() + kHeadWords + kFaceWords * i, &record, sizeof record);
    }
}

std::unique_ptr<zellab::CInterFacePoint> makeFacePoints(const FaceSet& set, int width, int height) {
    auto container = std::make_unique<zellab::CInterFacePoint>();
    const int count = static_cast<int>(set.faces.size());
    container->SetFaceCount(count);
    for (int i = 0; i < count; ++i) {
        auto points = set.faces[static_cast<std::size_t>(i)].points;
        for (auto& p : points) {
            p.x *= static_cast<float>(width);
            p.y *= static_cast<float>(height);
        }
        container->AddFace(points.data(), i);
    }
    return container;
}

CGRect faceRectInPixels(const Face& face, int width, int height) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    return {face.rect[0] * w, face.rect[1] * h, face.rect[2] * w, face.rect[3] * h};
}

}  // namespace zel
