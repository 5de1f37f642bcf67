#include "gimp/picture/pictureFaces.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "gimp/picture/gegl.h"
#include "gimp/picture/targetLayer.h"
#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

/// The parasite that carries them, as JSON.
constexpr const char* kParasite = "zel-faces";

/// The library takes fractions between these two.
constexpr float kLeast = -1, kMost = 2;

struct ParasiteFree {
    void operator()(GimpParasite* parasite) const { gimp_parasite_free(parasite); }
};
using Parasite = std::unique_ptr<GimpParasite, ParasiteFree>;

/// Where one axis of a layer lies on the picture's.
struct Axis {
    float picture, start, length;  // pixels

    float toLayer(float fraction) const { return (fraction * picture - start) / length; }
    float toPicture(float fraction) const { return (fraction * length + start) / picture; }
    bool isWhole() const { return start == 0 && picture == length; }
};

/// Every place of the faces through one function an axis.
template <typename Across, typename Down>
void mapFaces(std::vector<zel_face>& faces, const Across& across, const Down& down) {
    for (zel_face& face : faces) {
        auto& [left, top, width, height] = face.rect;
        const float right = across(left + width), bottom = down(top + height);
        left = across(left);
        top = down(top);
        width = right - left;
        height = bottom - top;
        for (auto& point : face.points) {
            point[0] = across(point[0]);
            point[1] = down(point[1]);
        }
    }
}

Axis acrossOf(const TargetLayer& layer) {
    return {static_cast<float>(gimp_image_width(layer.image())), static_cast<float>(layer.area().x),
            static_cast<float>(layer.width())};
}

Axis downOf(const TargetLayer& layer) {
    return {static_cast<float>(gimp_image_height(layer.image())), static_cast<float>(layer.area().y),
            static_cast<float>(layer.height())};
}

bool isNear(const zel_face& face) {
    const auto fits = [](float value) { return value >= kLeast && value <= kMost; };
    return std::ranges::all_of(face.rect, fits) && std::ranges::all_of(face.points, [&](const auto& point) {
               return fits(point[0]) && fits(point[1]);
           });
}

}  // namespace

libzel::Faces keptFaces(gint32 image) {
    const Parasite parasite(gimp_image_get_parasite(image, kParasite));
    if (!parasite) return nullptr;
    try {
        libzel::Faces faces =
            libzel::facesFromJson({static_cast<const char*>(gimp_parasite_data(parasite.get())),
                                   static_cast<std::size_t>(gimp_parasite_data_size(parasite.get()))});
        int width = 0, height = 0;
        libzel::require(zel_faces_size(faces.get(), &width, &height));
        const bool fits = width == gimp_image_width(image) && height == gimp_image_height(image);
        return fits ? std::move(faces) : nullptr;
    } catch (const libzel::Error&) {
        return nullptr;  // another program's, or damaged: they are found anew
    }
}

void keepFaces(gint32 image, zel_faces* faces) {
    const std::string json = libzel::toJson(faces);
    const Parasite parasite(gimp_parasite_new(kParasite, GIMP_PARASITE_PERSISTENT,
                                              static_cast<guint32>(json.size()), json.data()));
    gimp_image_attach_parasite(image, parasite.get());
}

Rgba visiblePixels(gint32 image) {
    Rgba pixels(gimp_image_width(image), gimp_image_height(image));
    const gint32 layer = gimp_layer_new_from_visible(image, image, "visible");
    if (layer < 0) throw Refusal("What is visible of the picture cannot be read.");
    {
        const Buffer buffer(gimp_drawable_get_buffer(layer));
        gegl_buffer_get(buffer.get(), nullptr, 1.0, babl_format("R'G'B'A u8"), pixels.bytes.data(),
                        GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    }
    gimp_item_delete(layer);
    return pixels;
}

libzel::Faces facesFromFile(const std::string& path) {
    gchar* text = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(path.c_str(), &text, &length, &error)) {
        const std::string why = error->message;
        g_error_free(error);
        throw Refusal(why + ".");
    }
    const std::unique_ptr<gchar, decltype(&g_free)> owner(text, &g_free);
    try {
        return libzel::facesFromJson({text, length});
    } catch (const libzel::Error& failure) {
        throw Refusal(path + ": " + failure.what() + ".");
    }
}

std::vector<zel_face> listOf(const zel_faces* faces) {
    std::vector<zel_face> list;
    for (std::size_t i = 0; i < zel_faces_count(faces); ++i) list.push_back(libzel::faceAt(faces, i));
    return list;
}

libzel::Faces facesOf(const std::vector<zel_face>& list, int width, int height) {
    return libzel::made<libzel::Faces>(
        [&](zel_faces** out) { return zel_faces_create(list.data(), list.size(), width, height, out); });
}

std::vector<zel_face> onLayer(std::vector<zel_face> faces, const TargetLayer& layer) {
    const Axis across = acrossOf(layer), down = downOf(layer);
    // To the bit where both are one.
    if (!across.isWhole() || !down.isWhole())
        mapFaces(
            faces, [&](float x) { return across.toLayer(x); }, [&](float y) { return down.toLayer(y); });
    return faces;
}

std::vector<zel_face> onPicture(std::vector<zel_face> faces, const TargetLayer& layer) {
    const Axis across = acrossOf(layer), down = downOf(layer);
    if (!across.isWhole() || !down.isWhole())
        mapFaces(
            faces, [&](float x) { return across.toPicture(x); }, [&](float y) { return down.toPicture(y); });
    return faces;
}

std::shared_ptr<const zel_faces> facesForEffect(const zel_faces* faces, const TargetLayer& layer) {
    std::vector<zel_face> list = onLayer(listOf(faces), layer);
    list.erase(std::remove_if(list.begin(), list.end(), [](const zel_face& face) { return !isNear(face); }),
               list.end());
    if (list.empty()) return nullptr;
    return facesOf(list, layer.width(), layer.height());
}

}  // namespace zelgimp
