#include "gimp/picture/pictureFaces.h"

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

std::vector<zel_face> listOf(const zel_faces* faces) {
    std::vector<zel_face> list;
    for (std::size_t i = 0; i < zel_faces_count(faces); ++i) list.push_back(libzel::faceAt(faces, i));
    return list;
}

/// Fractions of the picture as fractions of a layer in it.
struct ToLayer {
    float width, height, x, y, layerWidth, layerHeight;

    float across(float fraction) const { return (fraction * width - x) / layerWidth; }
    float down(float fraction) const { return (fraction * height - y) / layerHeight; }
    zel_face of(zel_face face) const {
        face.rect[0] = across(face.rect[0]);
        face.rect[1] = down(face.rect[1]);
        face.rect[2] *= width / layerWidth;
        face.rect[3] *= height / layerHeight;
        for (auto& point : face.points) {
            point[0] = across(point[0]);
            point[1] = down(point[1]);
        }
        return face;
    }
};

bool isNear(const zel_face& face) {
    const auto fits = [](float value) { return value >= kLeast && value <= kMost; };
    for (const float number : face.rect)
        if (!fits(number)) return false;
    for (const auto& point : face.points)
        if (!fits(point[0]) || !fits(point[1])) return false;
    return true;
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

std::shared_ptr<const zel_faces> facesOnLayer(const zel_faces* faces, const TargetLayer& layer) {
    int width = 0, height = 0;
    std::vector<zel_face> list;
    if (faces) {
        width = gimp_image_width(layer.image());
        height = gimp_image_height(layer.image());
        const ToLayer map{static_cast<float>(width),          static_cast<float>(height),
                          static_cast<float>(layer.area().x), static_cast<float>(layer.area().y),
                          static_cast<float>(layer.width()),  static_cast<float>(layer.height())};
        const bool isWhole =
            layer.area().x == 0 && layer.area().y == 0 && layer.width() == width && layer.height() == height;
        for (const zel_face& face : listOf(faces)) {
            const zel_face moved = isWhole ? face : map.of(face);
            if (isNear(moved)) list.push_back(moved);
        }
    }
    if (list.empty()) return nullptr;
    return libzel::made<libzel::Faces>([&](zel_faces** out) {
        return zel_faces_create(list.data(), list.size(), layer.width(), layer.height(), out);
    });
}

}  // namespace zelgimp
