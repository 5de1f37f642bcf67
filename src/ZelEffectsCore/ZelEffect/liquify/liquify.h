#pragma once

#include <vector>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// A round brush that warps pixels through a displacement field: the pixel at p shows what lay at
/// p + displacement(p). Every stroke starts from an empty field and from the picture as it stands; the steps
/// of one stroke add up in the field, and the picture is resampled once. One object, one thread.
///
/// With f the falloff at offset (dx, dy) from the brush centre (1 there, 0 at the radius) and s the strength:
///   mode 0 bulge           -(dx, dy) * f * 0.1 * s
///   mode 1 pinch           +(dx, dy) * f * 0.1 * s
///   mode 2 push            step vector * f * s, along the path
///   mode 3 restore         the field times 1 - f * s * 0.5
///   mode 4 twirl           (-dy, dx) * f * s * 0.5
///   mode 5 counter twirl   (dy, -dx) * f * s * 0.5
/// Other modes add nothing.
class CLiquify {
public:
    CLiquify() = default;
    virtual ~CLiquify() = default;
    CLiquify(const CLiquify&) = delete;
    CLiquify& operator=(const CLiquify&) = delete;

    /// The RGBA picture that strokes change in place; borrowed.
    void setImage(ImageView image) { m_image = image; }

    /// Brush radius in pixels; below 1 no stroke does anything.
    void setRadius(int radius) { m_radius = radius; }

    /// 100 is full. A negative strength turns every stroke into a pinch at its end point.
    void setStrength(int percent) { m_strength = static_cast<float>(percent / 100.0); }

    /// One stroke from (x2, y2) to (x1, y1). Modes other than 2 act at (x1, y1) alone. Nothing happens
    /// where a point lies outside the picture or the strength is 0. Alpha is kept.
    void apply(int x1, int y1, int x2, int y2, int mode);

private:
    /// A part of the picture.
    struct Area {
        int left = 0, top = 0, width = 0, height = 0;
    };
    /// One step: brush position and what it adds in push mode.
    struct Step {
        int x = 0, y = 0;
        Vector2f vector;
    };

    void applyOnce(int x, int y);
    void applyPath(int x1, int y1, int x2, int y2);
    void prepare(const Area& field, const Area& snapshot);
    double outwardShare() const;
    void buildFactors();
    void runStep(const Step& step);
    void runStepRow(const Step& step, int y, int left, int width, Vector2f* out) const;
    Vector2f fieldAt(float x, float y) const;
    Vector2f keptInside(Vector2f u, int x, int y) const;
    void draw() const;

    ImageView m_image;
    float m_strength = 0.0f;  // of the caller; the sign selects the mode
    int m_radius = 0;
    std::vector<float> m_factors;   // of the mode, by (distance / radius)^2 in steps of 1 / radius
    float m_strokeStrength = 0.3f;  // absolute strength of the stroke under way
    int m_mode = 2;
    Area m_fieldArea;
    Plane<Vector2f> m_field;  // displacements in pixels
    bool m_fieldEmpty = true;
    std::vector<Vector2f> m_stepField;  // what the step under way writes, row by row of its disc
    Area m_snapshotArea;
    std::vector<Byte> m_snapshot;  // RGBA before the stroke
};

}  // namespace zellab
