#include "gimp/picture/targetLayer.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

/// Rows that are converted at once.
constexpr int kBandRows = 64;

/// 8 bits on the display's curve, in the primaries of that format's own space: the effects take the numbers as they
/// are stored, so that colours outside of sRGB are not cut off.
const Babl* eightBits(const Babl* own) {
    return babl_format_with_space("R'G'B'A u8", own);
}

std::string nameOf(gint32 item) {
    gchar* const name = gimp_item_get_name(item);
    std::string text = "“" + std::string(name ? name : "?") + "”";
    g_free(name);
    return text;
}

/// Everything is selected while it lives, and then again what was; in one undo step with what happens meanwhile.
class NoSelection {
public:
    explicit NoSelection(gint32 image) : m_image(image) {
        gimp_image_undo_group_start(m_image);
        if (gimp_selection_is_empty(m_image)) return;
        m_saved = gimp_selection_save(m_image);
        gimp_selection_none(m_image);
    }
    ~NoSelection() {
        if (m_saved >= 0) {
            gimp_image_select_item(m_image, GIMP_CHANNEL_OP_REPLACE, m_saved);
            gimp_image_remove_channel(m_image, m_saved);
        }
        gimp_image_undo_group_end(m_image);
    }
    NoSelection(const NoSelection&) = delete;
    NoSelection& operator=(const NoSelection&) = delete;

private:
    gint32 m_image, m_saved = -1;
};

/// One buffer of the layer copied to another of its format, but for what an effect changed.
class ChangedPixels {
public:
    ChangedPixels(const Rgba& before, const Rgba& after, const Babl* own)
        : m_before(before),
          m_after(after),
          m_own(own),
          m_size(static_cast<std::size_t>(babl_format_get_bytes_per_pixel(own))),
          m_toOwn(babl_fish(eightBits(own), own)) {}

    void copy(GeglBuffer* from, GeglBuffer* to, const GeglRectangle& area) {
        for (int y = area.y; y < area.y + area.height; y += kBandRows)
            copyBand(from, to,
                     rectangle(area.x, y, area.width, std::min(kBandRows, area.y + area.height - y)));
    }

private:
    void copyBand(GeglBuffer* from, GeglBuffer* to, const GeglRectangle& band) {
        const std::size_t row = m_size * static_cast<std::size_t>(band.width);
        m_pixels.resize(row * static_cast<std::size_t>(band.height));
        m_converted.resize(row);
        gegl_buffer_get(from, &band, 1.0, m_own, m_pixels.data(), GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
        for (int y = 0; y < band.height; ++y) {
            const unsigned char* const before = m_before.at(band.x, band.y + y);
            const unsigned char* const after = m_after.at(band.x, band.y + y);
            unsigned char* const own = m_pixels.data() + row * static_cast<std::size_t>(y);
            babl_process(m_toOwn, after, m_converted.data(), band.width);
            for (std::size_t x = 0; x < static_cast<std::size_t>(band.width); ++x)
                if (std::memcmp(before + 4 * x, after + 4 * x, 4) != 0)
                    std::copy_n(m_converted.data() + m_size * x, m_size, own + m_size * x);
        }
        gegl_buffer_set(to, &band, 0, m_own, m_pixels.data(), GEGL_AUTO_ROWSTRIDE);
    }

    const Rgba &m_before, &m_after;
    const Babl* m_own;
    std::size_t m_size;  // bytes of a pixel
    const Babl* m_toOwn;
    std::vector<unsigned char> m_pixels, m_converted;
};

}  // namespace

TargetLayer::TargetLayer(gint32 image, gint32 drawable) : m_image(image), m_drawable(drawable) {
    requireUsable();
    gimp_drawable_offsets(m_drawable, &m_area.x, &m_area.y);
    m_area.width = gimp_drawable_width(m_drawable);
    m_area.height = gimp_drawable_height(m_drawable);
}

void TargetLayer::requireUsable() const {
    if (!gimp_item_is_valid(m_drawable) || gimp_item_get_image(m_drawable) != m_image)
        throw Refusal("The layer is no longer there.");
    const std::string name = nameOf(m_drawable);
    if (gimp_item_is_group(m_drawable))
        throw Refusal(name + " is a group of layers: please choose one of the layers in it.");
    if (!gimp_item_is_layer(m_drawable))
        throw Refusal(name + " is no layer: portrait effects work on layers.");
    if (gimp_drawable_is_indexed(m_drawable))
        throw Refusal("This picture has a colour table: please choose Image > Mode > RGB first.");
    if (gimp_item_get_lock_content(m_drawable))
        throw Refusal("The pixels of " + name + " are locked: please unlock them in the Layers dialog.");
}

Rgba TargetLayer::read() const {
    Rgba pixels(width(), height());
    const Buffer buffer(gimp_drawable_get_buffer(m_drawable));
    const GeglRectangle whole = rectangle(0, 0, width(), height());
    gegl_buffer_get(buffer.get(), &whole, 1.0, eightBits(gimp_drawable_get_format(m_drawable)),
                    pixels.bytes.data(), GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    return pixels;
}

void TargetLayer::write(const Rgba& before, const Rgba& after, Blend blend) const {
    if (blend == Blend::throughSelection) {
        merge(before, after);
    } else {
        const NoSelection everything(m_image);
        merge(before, after);
    }
    gimp_displays_flush();
}

void TargetLayer::merge(const Rgba& before, const Rgba& after) const {
    GeglRectangle changed{};
    if (!gimp_drawable_mask_intersect(m_drawable, &changed.x, &changed.y, &changed.width, &changed.height))
        throw Refusal("The selection lies outside of the layer: nothing would change.");
    {
        const Buffer own(gimp_drawable_get_buffer(m_drawable));
        const Buffer shadow(gimp_drawable_get_shadow_buffer(m_drawable));
        ChangedPixels(before, after, gimp_drawable_get_format(m_drawable))
            .copy(own.get(), shadow.get(), changed);
    }
    // One undo step, blended through the selection.
    gimp_drawable_merge_shadow(m_drawable, TRUE);
    gimp_drawable_update(m_drawable, changed.x, changed.y, changed.width, changed.height);
}

std::string TargetLayer::precisionNote() const {
    const GimpPrecision precision = gimp_image_get_precision(m_image);
    if (precision == GIMP_PRECISION_U8_GAMMA) return {};
    if (precision == GIMP_PRECISION_U8_LINEAR)
        return "This picture keeps linear light in 8 bits: what the effect changes is rounded twice.";
    const bool is16 = precision == GIMP_PRECISION_U16_LINEAR || precision == GIMP_PRECISION_U16_GAMMA ||
                      precision == GIMP_PRECISION_HALF_LINEAR || precision == GIMP_PRECISION_HALF_GAMMA;
    const bool is32 = precision == GIMP_PRECISION_U32_LINEAR || precision == GIMP_PRECISION_U32_GAMMA ||
                      precision == GIMP_PRECISION_FLOAT_LINEAR || precision == GIMP_PRECISION_FLOAT_GAMMA;
    return std::string("This picture has ") +
           (is16   ? "16"
            : is32 ? "32"
                   : "64") +
           " bits a channel: pixels that the effect changes are left with 8 of them, all others keep theirs.";
}

}  // namespace zelgimp
