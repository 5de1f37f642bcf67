#include "libzel/faces/networkFinder.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "frame/processorCount.h"
#include "libzel/faces/faceDetectorNet.h"
#include "libzel/faces/foundFace.h"
#include "libzel/faces/guessedGroups.h"
#include "libzel/faces/meshLandmarks.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zel {

namespace {

/// What the detector and the plain mesh say together, at the mesh's first and second look. The least that was seen
/// of true faces is 0.89, the most of animals' 0.62. The refined mesh is no judge: it takes deer for faces.
constexpr float kLeastTrust = 0.7f;

/// Heights of the smallest faces as shares of the picture's shorter side; the turned looks spare the small ones.
constexpr float kLeastFace = 0.06f, kLeastTurnedFace = 0.12f;

/// The search ends where faces of this share of the largest one's height would have been seen.
constexpr float kBystander = 1 / 3.0f;

/// Two faces are one where the middles of their squares lie closer than that share of the larger's side; where one is
/// the other upside down, the second share.
constexpr float kSameFace = 0.25f, kSameFaceTurned = 0.5f;

/// The first look sees faces that lean up to 60 degrees, and more; the next one those that hang upside down. A face
/// that is seen the wrong way up has less trust than this (0.8 at most on 31 photographs, 0.87 on drawn ones), and
/// calls for the turned looks as no face does. So do a few of the true ones, which then stay as they are.
constexpr float kSureOfTurn = 0.9f;
constexpr float kQuarter = std::numbers::pi_v<float> / 2;
constexpr float kTurnedLooks[] = {2 * kQuarter, kQuarter, 3 * kQuarter};

struct SeenFace {
    FaceMesh mesh;
    TurnedSquare square;
    float trust = 0;
};

bool sameFace(const SeenFace& a, const SeenFace& b) {
    const auto apart = a.square.centre - b.square.centre;
    const bool turned = std::cos(a.square.turn - b.square.turn) < 0;
    return std::hypot(apart.x, apart.y) <
           (turned ? kSameFaceTurned : kSameFace) * std::max(a.square.side, b.square.side);
}

/// Of those that are one face the surest; the surest first.
std::vector<SeenFace> distinct(std::vector<SeenFace> seen) {
    std::stable_sort(seen.begin(), seen.end(),
                     [](const auto& a, const auto& b) { return a.trust > b.trust; });
    std::vector<SeenFace> faces;
    for (const SeenFace& face : seen)
        if (std::none_of(faces.begin(), faces.end(), [&](const auto& kept) { return sameFace(kept, face); }))
            faces.push_back(face);
    return faces;
}

/// One search through one picture.
class Search {
public:
    Search(const ColourPyramid& picture, Network& detector, Network& mesh)
        : m_picture(picture), m_detector(detector), m_mesh(mesh) {}

    std::vector<SeenFace> faces() const {
        std::vector<SeenFace> found = look(0, kLeastFace);
        for (const float turn : kTurnedLooks) {
            const auto sure = [](const SeenFace& face) { return face.trust >= kSureOfTurn; };
            if (!found.empty() && std::all_of(found.begin(), found.end(), sure)) break;
            std::vector<SeenFace> more = look(turn, kLeastTurnedFace);
            found.insert(found.end(), more.begin(), more.end());
            found = distinct(std::move(found));
        }
        return found;
    }

private:
    /// From the largest windows on, until smaller ones would find bystanders alone.
    std::vector<SeenFace> look(float turn, float leastFace) const {
        std::vector<DetectedFace> detected;
        const auto plan = windowPlan(m_picture.width(), m_picture.height(), leastFace);
        for (const WindowLevel& level : plan) {
            const auto more = detectFaces(m_detector, m_picture, level.windows, turn);
            detected.insert(detected.end(), more.begin(), more.end());
            const float enough = kLeastInWindow * level.side / kBystander;
            const auto isLarge = [&](const DetectedFace& face) {
                return face.score >= kLeastTrust && face.height >= enough;
            };
            if (&level == &plan.back() || std::none_of(detected.begin(), detected.end(), isLarge)) continue;
            std::vector<SeenFace> faces = judged(detector::merge(detected));
            const bool ends = std::any_of(faces.begin(), faces.end(), [&](const SeenFace& face) {
                constexpr float kSquareOverBox = 1.5f;
                return face.square.side >= kSquareOverBox * enough;
            });
            if (ends) return faces;
        }
        return judged(detector::merge(detected));
    }

    /// Those that are faces, the surest first.
    std::vector<SeenFace> judged(const std::vector<DetectedFace>& detected) const {
        std::vector<SeenFace> seen(detected.size());
        zellab::runTasks(static_cast<int>(detected.size()), zellab::ProcessorCount(), [&](int i) {
            const auto index = static_cast<std::size_t>(i);
            seen[index] = judge(detected[index]);
        });
        std::erase_if(seen, [](const SeenFace& face) { return face.trust < kLeastTrust; });
        return distinct(std::move(seen));
    }

    /// Two looks of the plain mesh, the second from where the first one saw the face. No trust: it is none.
    SeenFace judge(const DetectedFace& detected) const {
        SeenFace face{{}, detected.square(), 0};
        float trust = 0;
        for (int i = 0; i < 2; ++i) {
            face.mesh = fitMesh(m_mesh, m_picture, face.square);
            face.square = face.mesh.square();
            trust = detected.score * face.mesh.presence;
            if (!(trust >= kLeastTrust) || !face.mesh.isFinite() || !face.square.sound()) return face;
        }
        face.trust = std::min(trust, 1.0f);
        return face;
    }

    const ColourPyramid& m_picture;
    Network& m_detector;
    Network& m_mesh;
};

/// Landmarks are told in steps of this many pixels, so that the last bits of a network's numbers do not show.
Landmarks rounded(Landmarks points) {
    constexpr float kSteps = 64;
    for (auto& p : points) p = {std::round(p.x * kSteps) / kSteps, std::round(p.y * kSteps) / kSteps};
    return points;
}

}  // namespace

std::optional<NetworkFinder> NetworkFinder::load(const std::string& folder, std::string& reason) {
    reason.clear();
    NetworkFinder finder;
    finder.m_detector = Network::load(folder, kFaceDetectorKind, reason);
    if (!finder.m_detector) return std::nullopt;
    finder.m_mesh = Network::load(folder, kFaceMeshKind, reason);
    if (!finder.m_mesh) return std::nullopt;
    finder.m_refined = RefinedMesh::load(folder, reason);
    return finder;
}

FaceSet NetworkFinder::find(zellab::ConstImageView whole) const {
    const ColourPyramid picture(whole);
    std::vector<SeenFace> seen = Search(picture, *m_detector, *m_mesh).faces();
    std::stable_sort(seen.begin(), seen.end(),
                     [](const auto& a, const auto& b) { return a.square.side > b.square.side; });
    std::vector<Face> faces(seen.size());
    zellab::runTasks(static_cast<int>(seen.size()), zellab::ProcessorCount(), [&](int i) {
        const auto index = static_cast<std::size_t>(i);
        const SeenFace& face = seen[index];
        FaceMesh mesh = m_refined ? m_refined->fit(picture, face.square) : face.mesh;
        if (!mesh.isFinite()) mesh = face.mesh;
        const Landmarks points = rounded(meshLandmarks(mesh));
        faces[index] = foundFace(points, whole.width, whole.height, face.trust);
        faces[index].guessed = guessedGroups(picture, points);
    });
    std::erase_if(faces, [](const Face& face) { return !(face.rect[2] > 0 && face.rect[3] > 0); });
    return {whole.width, whole.height, std::move(faces)};
}

}  // namespace zel
