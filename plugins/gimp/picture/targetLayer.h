#pragma once

#include <libgimp/gimp.h>

#include <string>

#include "gimp/picture/gegl.h"
#include "gimp/run/pixels.h"

namespace zelgimp {

/// Where a result goes: into what is selected, as far as it is, or into the whole layer.
enum class Blend { throughSelection, whole };

/// The layer that an effect changes.
class TargetLayer {
public:
    /// Throws Refusal where no effect can work on it: a group, a channel, indexed colours, locked pixels.
    TargetLayer(gint32 image, gint32 drawable);

    gint32 image() const { return m_image; }
    gint32 drawable() const { return m_drawable; }
    int width() const { return m_area.width; }
    int height() const { return m_area.height; }
    /// Where it lies in the picture: its corner and size in the picture's pixels.
    const GeglRectangle& area() const { return m_area; }

    /// Its pixels, whole, in 8 bits with the display's curve; alpha is 255 where it has none.
    Rgba read() const;

    /// Makes `after` of it; one step to undo. Pixels that equal those of `before` keep all the bits that the layer has.
    void write(const Rgba& before, const Rgba& after, Blend blend) const;

    /// What is lost in 8 bits, a sentence; empty: nothing.
    std::string precisionNote() const;

private:
    void requireUsable() const;
    void merge(const Rgba& before, const Rgba& after) const;

    gint32 m_image, m_drawable;
    GeglRectangle m_area{};
};

}  // namespace zelgimp
