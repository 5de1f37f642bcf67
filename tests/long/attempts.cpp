#include "attempts.h"

#include <cstdlib>
#include <stdexcept>

#include "libzel/hostScene.h"
#include "support/hostileScene.h"
#include "support/scratchFolder.h"
#include "support/tinyImages.h"

namespace zeltest {

namespace {

/// Everything given and a good face; the scenario is the one that does most.
class OperationAttempt : public Attempt {
public:
    OperationAttempt(const Operation& operation, int width, int height)
        : m_operation(operation), m_scene(width, height, 0), m_call(m_scene.call(m_render)) {
        m_call.number = 64;
        m_call.otherNumber = 2;
        m_render.DrawOnProcessor(true);
        m_render.SetDepthPlane(m_call.mask, width, height);
        if (operation.name == std::string("DepthEstimate")) {
            m_render.setResourcePath(ZEL_ASSETS "/depth", ZEL_ASSETS "/bokeh");
            m_render.Init(false);
        }
    }
    bool run() override {
        std::srand(1);
        return m_operation.run(m_call) || m_operation.act;
    }
    Bytes written() override {
        const std::size_t bytes =
            4 * static_cast<std::size_t>(m_call.width) * static_cast<std::size_t>(m_call.height);
        Bytes all(m_call.image, m_call.image + bytes);
        all.insert(all.end(), m_call.second, m_call.second + bytes);
        return all;
    }
    bool isUntouched() override { return m_scene.pictureUntouched(); }
    bool isIntact() override {
        return m_scene.guardsIntact() && (m_scene.alphaUntouched() || !m_operation.keepsAlpha());
    }

private:
    const Operation& m_operation;
    HostileScene m_scene;
    DefocusCore::ZelDepthDefocusRender m_render;
    Call m_call;
};

zel_face standardFace() {
    zel_face face{};
    const float rect[] = {0.1f, 0.1f, 0.8f, 0.8f};
    std::copy_n(rect, 4, face.rect);
    for (std::size_t i = 0; i < ZEL_LANDMARKS; ++i) {
        face.points[i][0] = zellab::kTemplateLandmarks[i].x;
        face.points[i][1] = zellab::kTemplateLandmarks[i].y;
    }
    return face;
}

class EffectAttempt : public Attempt {
public:
    EffectAttempt(zel_context* context, const zel_effect& effect, int width, int height)
        : m_context(context),
          m_effect(effect),
          m_before(drawnFace(width, height)),
          m_picture(m_before.size()),
          m_second(m_before.size(), 90),
          m_mask(m_before.size() / 4, 0),
          m_maskOut(m_before.size() / 4, 7),
          m_depthOut(m_before.size() / 4, 7),
          m_values(neededValues(effect)),
          m_list(m_values.list()) {
        std::copy(m_before.begin(), m_before.end(), m_picture.data());
        std::fill_n(m_mask.data(), m_mask.size() / 3, static_cast<unsigned char>(255));
        const zel_face face = standardFace();
        m_faces = libzel::made<libzel::Faces>(
            [&](zel_faces** out) { return zel_faces_create(&face, 1, width, height, out); });
        const auto pixels = [=](GuardedBytes& bytes, zel_format format) {
            return zel_pixels{bytes.data(), width, height, 0, format, 0};
        };
        m_pixels = pixels(m_picture, ZEL_RGBA8);
        m_planes = {pixels(m_second, ZEL_RGBA8), pixels(m_mask, ZEL_GRAY8), pixels(m_maskOut, ZEL_GRAY8),
                    pixels(m_depthOut, ZEL_GRAY8)};
        m_inputs.values = m_list.data();
        m_inputs.value_count = m_list.size();
        if (effect.faces != ZEL_NO) m_inputs.faces = m_faces.get();
        if (effect.second != ZEL_NO) m_inputs.second = m_planes.data();
        if (effect.mask != ZEL_NO) m_inputs.mask = &m_planes[1];
        if (effect.depth != ZEL_NO) m_inputs.depth = &m_planes[1];
        if (effect.mask_out != ZEL_NO) m_inputs.mask_out = &m_planes[2];
        if (effect.depth_out != ZEL_NO) m_inputs.depth_out = &m_planes[3];
    }
    bool run() override {
        const zel_status status = zel_apply(m_context, m_effect.name, &m_pixels, &m_inputs);
        if (status != ZEL_OK && !*zel_message()) throw std::logic_error("failed without a reason");
        return status == ZEL_OK;
    }
    Bytes written() override {
        Bytes all(m_picture.data(), m_picture.data() + m_picture.size());
        for (GuardedBytes* out : {&m_maskOut, &m_depthOut})
            all.insert(all.end(), out->data(), out->data() + out->size());
        return all;
    }
    bool isUntouched() override {
        return std::equal(m_before.begin(), m_before.end(), m_picture.data()) && m_maskOut.allAre(7) &&
               m_depthOut.allAre(7);
    }
    bool isIntact() override {
        return m_picture.guardsIntact() && m_second.guardsIntact() && m_mask.guardsIntact() &&
               m_maskOut.guardsIntact() && m_depthOut.guardsIntact();
    }

private:
    zel_context* m_context;
    const zel_effect& m_effect;
    const Bytes m_before;
    GuardedBytes m_picture, m_second, m_mask, m_maskOut, m_depthOut;
    const libzel::Values m_values;
    const std::vector<zel_value> m_list;
    libzel::Faces m_faces;
    zel_pixels m_pixels{};
    std::array<zel_pixels, 4> m_planes{};
    zel_inputs m_inputs = libzel::sized<zel_inputs>();
};

/// A call without a picture of the caller's.
class PlainAttempt : public Attempt {
public:
    explicit PlainAttempt(const std::function<bool()>& call) : m_call(call) {}
    bool run() override { return m_call(); }

private:
    const std::function<bool()>& m_call;
};

/// A call of the C interface that hands out an object: there is one with ZEL_OK, and none without.
template <typename Owner, typename Make>
bool handsOut(const Make& make) {
    typename Owner::pointer object = nullptr;
    const zel_status status = make(&object);
    const Owner owner(object);
    if ((status == ZEL_OK) != (object != nullptr)) throw std::logic_error("the object and its status differ");
    if (status != ZEL_OK && !*zel_message()) throw std::logic_error("failed without a reason");
    return status == ZEL_OK;
}

bool freed(void* block) {
    std::free(block);
    return block != nullptr;
}

}  // namespace

std::vector<Deed> pictureDeeds(zel_context* context) {
    std::vector<Deed> deeds;
    for (const Operation& operation : kOperations)
        deeds.push_back({operation.name,
                         [&operation](int width, int height) {
                             return std::make_unique<OperationAttempt>(operation, width, height);
                         },
                         false, operation.drawsOnRand()});
    for (std::size_t i = 0; i < zel_effect_count(); ++i) {
        const zel_effect& effect = *zel_effect_at(i);
        deeds.push_back({std::string("effect ") + effect.name,
                         [context, &effect](int width, int height) {
                             return std::make_unique<EffectAttempt>(context, effect, width, height);
                         },
                         true, false});
    }
    return deeds;
}

std::vector<Deed> otherDeeds(zel_context* context) {
    using ZelImageCore::StbImageUtil;
    using Render = DefocusCore::ZelDepthDefocusRender;
    constexpr int kWidth = 96, kHeight = 128;
    static const ScratchFolder folder;
    static const Bytes picture = drawnFace(kWidth, kHeight), file = tgaFile(kWidth, kHeight, picture);
    static const std::string path = folder.write("p.tga", file);
    static const zel_face face = standardFace();
    static Bytes plane(picture.size() / 4);
    static const zel_pixels pixels{
        const_cast<unsigned char*>(picture.data()), kWidth, kHeight, 0, ZEL_RGBA8, 0},
        out{plane.data(), kWidth, kHeight, 0, ZEL_GRAY8, 0};
    const auto portrait = [=](zel_portrait** made) {
        return zel_draw_portrait(context, kWidth, kHeight, 3, nullptr, 0, made);
    };
    const auto faceList = [](zel_faces** made) { return zel_faces_create(&face, 1, kWidth, kHeight, made); };

    static const std::vector<std::pair<const char*, std::function<bool()>>> calls = {
        {"loadImageFromFile",
         [] {
             int width, height, channels;
             return freed(StbImageUtil::loadImageFromFile(path, width, height, channels, false, false, 50,
                                                          false, nullptr));
         }},
        {"loadImageFromFile scrambled",
         [] {
             int width, height, channels;
             return freed(StbImageUtil::loadImageFromFile(path, width, height, channels, true, true, 0, false,
                                                          nullptr));
         }},
        {"loadImageFromMemory",
         [] {
             int width, height, channels;
             return freed(StbImageUtil::loadImageFromMemory(const_cast<unsigned char*>(file.data()),
                                                            static_cast<int>(file.size()), width, height,
                                                            channels, false, 50, false));
         }},
        {"AddFace",
         [] {
             zellab::CInterFacePoint points;
             points.AddFace(zellab::kTemplateLandmarks.data(), 3);
             return points.GetInterPoints(3) != nullptr;
         }},
        {"createNoise",
         [] {
             int width = 30, height = 20;
             return freed(Render().createNoise(width, height));
         }},
        {"ReadFile2String",
         [] {
             unsigned long size = 0;
             return freed(Render().ReadFile2String(path.c_str(), size));
         }},
        {"render's life",
         [] {
             Render render;
             render.setResourcePath(ZEL_ASSETS "/depth", ZEL_ASSETS "/bokeh");
             Bytes shape = picture;
             bool isDone = render.Init(false);
             isDone = render.SetBokehImage("disc", shape.data(), kWidth, kHeight) && isDone;
             isDone = render.SetDepthPlane(plane.data(), kWidth, kHeight) && isDone;
             Render copy(render), assigned;
             assigned = copy;
             copy.Release();
             return isDone;
         }},
        {"zel_context_create",
         [] {
             return handsOut<libzel::Context>(
                 [](zel_context** made) { return zel_context_create(nullptr, made); });
         }},
        {"zel_faces_create", [=] { return handsOut<libzel::Faces>(faceList); }},
        {"zel_faces_from_json",
         [=] {
             zel_faces* made = nullptr;
             if (faceList(&made) != ZEL_OK) return false;
             const libzel::Faces owner(made);
             const char* text = nullptr;
             std::size_t length = 0;
             if (zel_faces_to_json(made, &text, &length) != ZEL_OK) return false;
             return handsOut<libzel::Faces>(
                 [&](zel_faces** again) { return zel_faces_from_json(text, length, again); });
         }},
        {"zel_find_faces",
         [=] {
             return handsOut<libzel::Faces>(
                 [=](zel_faces** made) { return zel_find_faces(context, &pixels, made); });
         }},
        {"zel_check_values",
         [] {
             const zel_value value{"blurLevel", "40", 0};
             return zel_check_values("defocus", &value, 1, nullptr) == ZEL_OK;
         }},
        {"zel_estimate_depth", [=] { return zel_estimate_depth(context, &pixels, nullptr, &out) == ZEL_OK; }},
        {"zel_make_mask",
         [=] { return zel_make_mask(context, ZEL_MASK_PERSON, &pixels, nullptr, &out) == ZEL_OK; }},
        {"zel_network_at",
         [=] {
             const zel_network* network = nullptr;
             return zel_network_at(context, 0, &network) == ZEL_OK;
         }},
        {"zel_decode_file",
         [=] {
             return handsOut<libzel::Picture>(
                 [=](zel_picture** made) { return zel_decode_file(context, path.c_str(), nullptr, made); });
         }},
        {"zel_decode_memory",
         [=] {
             return handsOut<libzel::Picture>([=](zel_picture** made) {
                 return zel_decode_memory(context, file.data(), file.size(), nullptr, made);
             });
         }},
        {"zel_draw_portrait", [=] { return handsOut<libzel::Portrait>(portrait); }},
        {"zel_portrait_faces",
         [=] {
             zel_portrait* made = nullptr;
             if (portrait(&made) != ZEL_OK) return false;
             const libzel::Portrait owner(made);
             const zel_spot* spots = nullptr;
             std::size_t count = 0;
             return zel_portrait_spots(made, "irises", &spots, &count) == ZEL_OK &&
                    handsOut<libzel::Faces>([=](zel_faces** list) { return zel_portrait_faces(made, list); });
         }},
    };
    std::vector<Deed> deeds;
    for (const auto& [name, call] : calls)
        deeds.push_back({name, [&call = call](int, int) { return std::make_unique<PlainAttempt>(call); },
                         std::string(name).rfind("zel_", 0) == 0, false,
                         std::string(name) == "zel_faces_from_json"});
    return deeds;
}

}  // namespace zeltest
