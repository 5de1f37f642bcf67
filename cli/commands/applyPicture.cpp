#include "cli/commands/applyPicture.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "cli/commands/maskRemark.h"
#include "cli/drawing/sheet.h"
#include "cli/files/facesFile.h"
#include "cli/files/pngWriter.h"
#include "cli/files/writePicture.h"
#include "cli/run/namingFile.h"
#include "platform/fileTimes.h"
#include "platform/interruption.h"

namespace zelcli {

namespace {

/// Share of an input's progress bar that reading, and reading and the effects together, take.
constexpr double kReadShare = 0.1, kEffectShare = 0.9;

constexpr const char* kNoFace =
    "no face was found; --faces can tell where one is, and --no-face skip or copy goes on without";

/// A sum that two different pictures of one size hardly share. Of several lanes, which need not wait for each other.
std::uint64_t sumOf(const std::vector<unsigned char>& bytes) {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    constexpr std::size_t kLanes = 4;
    const auto mixed = [](std::uint64_t sum, std::uint64_t word) {
        sum = (sum ^ word) * kFactor;
        return sum ^ sum >> 32;
    };
    std::array<std::uint64_t, kLanes> lanes = {1, 2, 3, 4}, words;
    std::size_t at = 0;
    for (; at + sizeof words <= bytes.size(); at += sizeof words) {
        std::memcpy(words.data(), bytes.data() + at, sizeof words);
        for (std::size_t k = 0; k < kLanes; ++k) lanes[k] = mixed(lanes[k], words[k]);
    }
    std::uint64_t sum = bytes.size();
    for (; at < bytes.size(); ++at) sum = mixed(sum, bytes[at]);
    for (const std::uint64_t lane : lanes) sum = mixed(sum, lane);
    return sum;
}

/// Writes what an effect gave back, where it was asked for.
void writePlane(const UserPath& path, const Mask& plane) {
    if (!path.shown.empty() && !plane.samples.empty())
        namingFile(path.shown, [&] { writeFileSafely(path.real, encodeGrayPng(plane)); });
}

}  // namespace

/// What the steps give back.
struct PictureWork::Planes {
    Mask mask, depth;
};

bool PictureWork::usesFaces() const {
    return std::any_of(m_chain.begin(), m_chain.end(),
                       [](const ChainStep& step) { return step.meaning.uses_faces != 0; });
}

bool PictureWork::needsFaces() const {
    return std::any_of(m_chain.begin(), m_chain.end(),
                       [](const ChainStep& step) { return step.needsFaces(); });
}

void PictureWork::note(Outcome& outcome, const std::string& file, const std::string& text) const {
    outcome.notes.push_back(text);
    m_messages.note(file, text);
}

bool PictureWork::isThereAlready(const ApplyItem& item, Outcome& outcome) const {
    std::error_code none;
    if (item.output.isStream() || !(m_options.noClobber || m_options.resume) ||
        !std::filesystem::exists(item.output.real, none))
        return false;
    if (m_options.resume && !m_options.noClobber) {
        const auto made = std::filesystem::last_write_time(item.output.real, none);
        if (made < std::filesystem::last_write_time(item.input.real, none)) return false;
    }
    outcome.state = Outcome::State::skipped;
    outcome.why = m_options.noClobber ? "the output is there" : "it is done already";
    return true;
}

void PictureWork::run(std::size_t index, const ApplyItem& item, Outcome& outcome) const {
    if (isThereAlready(item, outcome)) return;
    m_messages.progress(index, "reading", 0);
    LoadedPicture picture = readPicture(item.input, m_options.read);
    for (const auto& text : picture.notes) note(outcome, item.input.shown, text);
    Image& image = picture.image;
    const libzel::Faces faces = usesFaces() ? facesFor(index, item, image, outcome) : nullptr;
    if (outcome.state == Outcome::State::skipped) return;

    const Image before = item.sheet.shown.empty() ? Image() : image;
    const std::uint64_t sum = sumOf(image.rgba);
    Planes planes;
    bool applied = false;
    for (std::size_t step = 0; step < m_chain.size(); ++step)
        if (!m_chain[step].needsFaces() || zel_faces_count(faces.get()) > 0) {
            applyStep(index, step, image, faces.get(), planes, outcome);
            applied = true;
        }
    if (applied && sumOf(image.rgba) == sum)
        note(outcome, item.input.shown, "the picture stays as it is: these settings change nothing in it");

    m_messages.progress(index, "writing", kEffectShare);
    if (applied || !copyFile(item, image)) write(item, image, outcome);
    writePlane(item.maskOut, planes.mask);
    writePlane(item.depthOut, planes.depth);
    if (!item.sheet.shown.empty())
        namingFile(item.sheet.shown,
                   [&] { writePicture(item.sheet.real, makeSheet(before, image, chainName(m_chain))); });
    outcome.state = Outcome::State::done;
}

/// Where nothing was done to a picture and nothing else is wanted of its file, its bytes are its output.
bool PictureWork::copyFile(const ApplyItem& item, const Image& image) const {
    const SaveOptions& save = m_options.save;
    const bool asItIs = !save.strip && !save.noGps && !save.lossless && !save.quality && !save.subsampling;
    if (!asItIs || item.input.isStream() || !image.origin || !image.origin->traits.format ||
        item.format.value_or(*image.origin->traits.format) != image.origin->traits.format)
        return false;
    if (m_options.inPlace) return true;
    const auto bytes = readBytesOf(item.input);
    namingFile(item.output.shown, [&] { writeBytes(item.output, bytes); });
    return true;
}

void PictureWork::write(const ApplyItem& item, const Image& image, Outcome& outcome) const {
    auto format = item.format;
    if (!format && image.origin) format = image.origin->traits.format;
    if (!format && m_options.inPlace)
        throw Failure("is of a format that is not written; --format and OUT can name one");
    const zellab::platform::FileTimes times(item.input.real);
    const auto notes = namingFile(item.output.shown, [&] {
        return writePicture(item.output, image, format.value_or(PictureFormat::png), m_options.save);
    });
    if (m_options.inPlace) times.giveTo(item.output.real);
    for (const auto& text : notes) note(outcome, item.output.shown, text);
}

/// Runs one effect on the picture, and fills the planes that were asked for.
void PictureWork::applyStep(std::size_t index, std::size_t step, Image& image, const zel_faces* faces,
                            Planes& planes, Outcome& outcome) const {
    const ChainStep& at = m_chain[step];
    struct Told {
        Messages& messages;
        std::size_t index;
        double from, share;
    } told{m_messages, index, 0, (kEffectShare - kReadShare) / static_cast<double>(m_chain.size())};
    told.from = kReadShare + told.share * static_cast<double>(step);
    auto inputs = libzel::sized<zel_inputs>();
    const auto& values = at.values.list();
    inputs.values = values.data();
    inputs.value_count = values.size();
    inputs.faces = at.meaning.uses_faces ? faces : nullptr;
    inputs.progress_user = &told;
    inputs.progress = [](void* user, double fraction, const char* stage) {
        const auto& to = *static_cast<Told*>(user);
        to.messages.progress(to.index, stage, to.from + to.share * fraction);
        return zellab::platform::Interruption::asked() ? 1 : 0;
    };
    zel_pixels mask, second, depth, maskPlane, depthPlane;
    // The library only reads what a step takes.
    const auto give = [](const auto& own, zel_pixels& pixels) {
        pixels = pixelsOf(const_cast<std::remove_cvref_t<decltype(own)>&>(own));
        return &pixels;
    };
    const auto giveEmpty = [&](Mask& own, zel_pixels& pixels) {
        own = {image.width, image.height, std::vector<unsigned char>(image.rgba.size() / 4)};
        return give(own, pixels);
    };
    if (at.mask) inputs.mask = give(*at.mask, mask);
    if (at.second) inputs.second = give(*at.second, second);
    if (at.depth) inputs.depth = give(*at.depth, depth);
    if (at.givesMask) inputs.mask_out = giveEmpty(planes.mask, maskPlane);
    if (at.givesDepth) inputs.depth_out = giveEmpty(planes.depth, depthPlane);
    const zel_pixels picture = pixelsOf(image);
    const zel_status status = zel_apply(library(), at.effect->name, &picture, &inputs);
    if (status == ZEL_CANCELLED) throw Interrupted();
    require(status);
    if (!at.mask) return;
    if (const std::string remark = maskRemark(*at.mask, image); !remark.empty())
        note(outcome, at.maskFile, remark);
}

/// An optional need of faces is content without them.
libzel::Faces PictureWork::foundFaces(std::size_t index, Image& image, Outcome& outcome) const {
    m_messages.progress(index, "finding faces", kReadShare);
    zel_faces* faces = nullptr;
    const zel_pixels picture = pixelsOf(image);
    const zel_status status = zel_find_faces(library(), &picture, &faces);
    libzel::Faces found(faces);
    if (status == ZEL_NOT_AVAILABLE && !needsFaces()) {
        note(outcome, outcome.input, std::string(zel_message()) + "; going on without faces");
        return found;
    }
    if (status == ZEL_NOT_AVAILABLE) throw Failure(std::string(zel_message()) + "; or give --faces");
    require(status);
    return found;
}

libzel::Faces PictureWork::facesFor(std::size_t index, const ApplyItem& item, Image& image,
                                    Outcome& outcome) const {
    const bool given = !item.faces.shown.empty();
    libzel::Faces faces;
    if (!given)
        faces = foundFaces(index, image, outcome);
    else if (!m_sharedFaces)
        faces = namingFile(item.faces.shown, [&] { return readFaces(item.faces.real); });
    const zel_faces* const all = faces ? faces.get() : m_sharedFaces;
    int width = 0, height = 0;
    if (given) {
        require(zel_faces_size(all, &width, &height));
        if (!sameProportions(image.width, image.height, width, height))
            note(outcome, item.faces.shown,
                 "its faces were found on a picture of other proportions than " + item.input.shown);
    } else if (all) {
        if (zel_faces_count(all) > 0 || !needsFaces()) note(outcome, item.input.shown, describeFaces(all));
    }
    if (zel_faces_count(all) == 0 && needsFaces()) {
        if (m_options.noFace == NoFace::fail) throw Failure(kNoFace);
        if (m_options.noFace == NoFace::copy)
            note(outcome, item.input.shown, "no face was found; what needs one is left out");
        else
            outcome.state = Outcome::State::skipped;
        outcome.why = m_options.noFace == NoFace::skip ? "no face was found" : "";
    }
    return chosen(all);
}

/// The faces that --face names: the library lists the largest first.
libzel::Faces PictureWork::chosen(const zel_faces* all) const {
    const std::size_t count = zel_faces_count(all);
    int width = 1, height = 1;
    if (!all) return nullptr;
    require(zel_faces_size(all, &width, &height));
    std::size_t first = 0, last = count;
    if (m_options.face == "largest") last = std::min<std::size_t>(1, count);
    unsigned wanted = 0;
    const auto& text = m_options.face;
    if (std::from_chars(text.data(), text.data() + text.size(), wanted).ec == std::errc() && count > 0) {
        if (wanted > count)
            throw Failure("has no face " + text + ": there " +
                          (count == 1 ? "is 1" : "are " + std::to_string(count)));
        first = wanted - 1;
        last = wanted;
    }
    std::vector<zel_face> faces;
    for (std::size_t i = first; i < last; ++i) faces.push_back(libzel::faceAt(all, i));
    return libzel::made<libzel::Faces>(
        [&](zel_faces** out) { return zel_faces_create(faces.data(), faces.size(), width, height, out); });
}

}  // namespace zelcli
