#include "gimp/picture/inputPlanes.h"

#include <cstddef>
#include <vector>

#include "gimp/picture/gegl.h"
#include "gimp/picture/targetLayer.h"
#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

constexpr const char *kSelectionWord = "selection", *kLayerWord = "layer:", *kChannelWord = "channel:";

/// The buffer of a source, and the layer's area as it sees it.
struct Placed {
    Buffer buffer;
    GeglRectangle area;
};

Placed placed(const TargetLayer& layer, const Source& source) {
    const gint32 drawable =
        source.kind == Source::kSelection ? gimp_image_get_selection(layer.image()) : source.drawable;
    if (!gimp_item_is_valid(drawable) || gimp_item_get_image(drawable) != layer.image())
        throw Refusal("What was chosen as a mask or a second picture is no longer in this picture.");
    if (source.kind == Source::kSelection && gimp_selection_is_empty(layer.image()))
        throw Refusal("Nothing is selected: please select what the effect should act on.");
    int x = 0, y = 0;
    gimp_drawable_offsets(drawable, &x, &y);
    GeglRectangle area = layer.area();
    area.x -= x;
    area.y -= y;
    return {Buffer(gimp_drawable_get_buffer(drawable)), area};
}

/// Channels hold plain shares, layers grey as it is seen.
std::shared_ptr<const Grey> readGrey(const TargetLayer& layer, const Source& source,
                                     GeglAbyssPolicy outside) {
    const Placed from = placed(layer, source);
    auto plane = std::make_shared<Grey>(layer.width(), layer.height());
    const bool isChannel = source.kind == Source::kSelection || !gimp_item_is_layer(source.drawable);
    if (isChannel) {
        gegl_buffer_get(from.buffer.get(), &from.area, 1.0, babl_format("Y u8"), plane->bytes.data(),
                        GEGL_AUTO_ROWSTRIDE, outside);
        return plane;
    }
    std::vector<unsigned char> greyAlpha(2 * plane->bytes.size());
    gegl_buffer_get(from.buffer.get(), &from.area, 1.0,
                    babl_format_with_space("Y'A u8", gimp_drawable_get_format(source.drawable)),
                    greyAlpha.data(), GEGL_AUTO_ROWSTRIDE, outside);
    for (std::size_t i = 0; i < plane->bytes.size(); ++i)
        plane->bytes[i] = static_cast<unsigned char>((greyAlpha[2 * i] * greyAlpha[2 * i + 1] + 127) / 255);
    return plane;
}

std::string ownName(gint32 item) {
    gchar* const name = gimp_item_get_name(item);
    std::string text = name ? name : "";
    g_free(name);
    return text;
}

}  // namespace

Source sourceOf(gint32 image, gint32 drawable) {
    if (drawable < 0) return {};
    if (drawable == gimp_image_get_selection(image)) return {Source::kSelection, -1};
    return {Source::kDrawable, drawable};
}

std::string textOf(const Source& source) {
    if (source.kind == Source::kNone) return {};
    if (source.kind == Source::kSelection) return kSelectionWord;
    return (gimp_item_is_layer(source.drawable) ? kLayerWord : kChannelWord) + ownName(source.drawable);
}

Source sourceFromText(gint32 image, const std::string& text) {
    const auto named = [&](const char* word, auto* find) {
        const std::string start = word;
        return text.compare(0, start.size(), start) == 0 ? find(image, text.c_str() + start.size()) : -1;
    };
    if (text == kSelectionWord) return {Source::kSelection, -1};
    gint32 drawable = named(kLayerWord, gimp_image_get_layer_by_name);
    if (drawable < 0) drawable = named(kChannelWord, gimp_image_get_channel_by_name);
    return sourceOf(image, drawable);
}

std::shared_ptr<const Grey> readMask(const TargetLayer& layer, const Source& source) {
    return source.kind == Source::kNone ? nullptr : readGrey(layer, source, GEGL_ABYSS_NONE);
}

std::shared_ptr<const Grey> readDepth(const TargetLayer& layer, const Source& source) {
    return source.kind == Source::kNone ? nullptr : readGrey(layer, source, GEGL_ABYSS_CLAMP);
}

std::shared_ptr<const Rgba> readSecond(const TargetLayer& layer, const Source& source) {
    if (source.kind == Source::kNone) return nullptr;
    const Placed from = placed(layer, source);
    auto picture = std::make_shared<Rgba>(layer.width(), layer.height());
    gegl_buffer_get(from.buffer.get(), &from.area, 1.0,
                    babl_format_with_space("R'G'B'A u8", gimp_drawable_get_format(source.drawable)),
                    picture->bytes.data(), GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    return picture;
}

}  // namespace zelgimp
