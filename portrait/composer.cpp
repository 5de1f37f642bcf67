#include "composer.h"

#include <algorithm>

#include "bodyPaint.h"
#include "browPaint.h"
#include "eyePaint.h"
#include "planeBlur.h"

namespace zel::drawing {

/// One pixel while it is being painted over.
struct Composer::Pixel {
    int x, y;
    Vec2 centre;
    Colour colour, clean;
    float depth = 0, person = 0;
    float head = 0, skin = 0, eyes = 0, iris = 0, lips = 0, brows = 0, hair = 0;
    DefectCover defects{};

    /// Lays something over all that is there so far; `keep` of the features below stays visible.
    void over(Colour painted, Colour paintedClean, float cover, float itsDepth) {
        colour = mix(colour, painted, cover);
        clean = mix(clean, paintedClean, cover);
        depth = mix(depth, itsDepth, cover);
        person += (1 - person) * cover;
        const float keep = 1 - cover;
        for (float* part : {&head, &skin, &eyes, &iris, &lips, &brows, &hair}) *part *= keep;
        for (float& defect : defects) defect *= keep;
    }
};

/// The face's surface at one point.
struct Composer::Face {
    Colour colour, clean;
    float relief = 0, skin = 1, eyes = 0, iris = 0, lips = 0;
    DefectCover defects{};
};

Composer::Composer(const PortraitParams& params)
    : m_sitter(resolveSitter(params)),
      m_scene(resolveScene(params, m_sitter)),
      m_shape(m_sitter),
      m_pose(m_scene, m_shape),
      m_lit(m_shape, m_pose, m_scene),
      m_studio{m_sitter, m_scene, m_shape, m_pose, m_lit, 1.0f / m_scene.pixelsPerMm},
      m_defects(params, m_studio),
      m_background(m_scene),
      m_hair(drawHair(m_studio)),
      m_backHair(m_scene.width, m_scene.height, m_hair.back),
      m_frontHair(m_scene.width, m_scene.height, m_hair.front),
      m_brows(m_scene.width, m_scene.height, drawBrows(m_studio)),
      m_lashes(m_scene.width, m_scene.height, drawLashes(m_studio)),
      m_developer(m_scene) {
    m_hair = {};
    softenHairShadow();
}

void Composer::softenHairShadow() {
    constexpr float kBlurMm = 5;
    const float blur = kBlurMm * m_scene.pixelsPerMm;
    m_shadowFactor = std::min(std::max(static_cast<int>(blur / 3), 1), 16);
    m_shadowWidth = (m_scene.width + m_shadowFactor - 1) / m_shadowFactor;
    m_shadowHeight = (m_scene.height + m_shadowFactor - 1) / m_shadowFactor;
    m_hairShadow.resize(static_cast<std::size_t>(m_shadowWidth) * static_cast<std::size_t>(m_shadowHeight));
    std::size_t i = 0;
    for (int y = 0; y < m_shadowHeight; ++y)
        for (int x = 0; x < m_shadowWidth; ++x)
            m_hairShadow[i++] =
                m_frontHair
                    .at(x * m_shadowFactor + m_shadowFactor / 2, y * m_shadowFactor + m_shadowFactor / 2)
                    .cover;
    softenPlane(m_hairShadow, m_shadowWidth, m_shadowHeight,
                static_cast<int>(blur / static_cast<float>(m_shadowFactor) * 0.6f + 0.5f));
}

float Composer::hairShadowAt(Vec2 pixel) const {
    // Look from the skin towards the lamp: hair stands about a centimetre above it.
    constexpr float kHeightMm = 9;
    const Vec2 lamp{m_scene.keyDirection.x, m_scene.keyDirection.y};
    const Vec2 at =
        (pixel + lamp * (kHeightMm * m_scene.pixelsPerMm)) * (1.0f / static_cast<float>(m_shadowFactor)) -
        Vec2{0.5f, 0.5f};
    const float x = std::min(std::max(at.x, 0.0f), static_cast<float>(m_shadowWidth - 1));
    const float y = std::min(std::max(at.y, 0.0f), static_cast<float>(m_shadowHeight - 1));
    const int x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    const int x1 = std::min(x0 + 1, m_shadowWidth - 1), y1 = std::min(y0 + 1, m_shadowHeight - 1);
    const auto sample = [&](int sx, int sy) {
        return m_hairShadow[static_cast<std::size_t>(sy) * static_cast<std::size_t>(m_shadowWidth) +
                            static_cast<std::size_t>(sx)];
    };
    const float u = x - static_cast<float>(x0), v = y - static_cast<float>(y0);
    return mix(mix(sample(x0, y0), sample(x1, y0), u), mix(sample(x0, y1), sample(x1, y1), u), v);
}

void Composer::measure(Portrait& portrait) const {
    portrait.faces.width = m_scene.width;
    portrait.faces.height = m_scene.height;
    portrait.faces.faces = {measureFace(m_shape, m_pose, m_scene.width, m_scene.height)};
    for (std::size_t i = 0; i < 2; ++i) {
        const EyeShape& eye = m_shape.eyes[i];
        const Vec2 centre = m_pose.toPicture(eye.iris);
        // The circle lies on a turned face; its radius is the mean of the two half axes.
        const float across = length(m_pose.toPicture(eye.iris + Vec2{eye.irisRadius, 0}) -
                                    m_pose.toPicture(eye.iris - Vec2{eye.irisRadius, 0}));
        const float down = length(m_pose.toPicture(eye.iris + Vec2{0, eye.irisRadius}) -
                                  m_pose.toPicture(eye.iris - Vec2{0, eye.irisRadius}));
        portrait.irises[i] = {centre.x, centre.y, 0.25f * (across + down)};
    }
}

Composer::Face Composer::paintFace(Vec2 at, float shadow) const {
    Face face;
    const LitPoint point = m_lit.at(at);
    face.relief = point.relief;
    Colour reflectance = skinReflectance(m_studio, at);
    float gloss = 1;
    face.lips = paintLips(m_studio, at, reflectance, gloss);
    Colour skin = shadeSkin(m_studio, point, at, reflectance, shadow, gloss);
    skin = paintOpenings(m_studio, at, skin);
    for (const EyeShape& eye : m_shape.eyes) skin = paintLids(m_studio, eye, at, skin);
    face.clean = face.colour = skin;
    if (m_defects.any()) {
        face.defects = m_defects.coverAt(at);
        for (float& cover : face.defects) cover *= 1 - face.lips;
        face.colour = m_defects.apply(face.defects, at, skin);
    }
    for (const EyeShape& eye : m_shape.eyes) {
        const EyeSample sample = paintEye(m_studio, eye, at, point, shadow);
        if (sample.cover <= 0) continue;
        face.colour = mix(face.colour, sample.colour, sample.cover);
        face.clean = mix(face.clean, sample.colour, sample.cover);
        face.eyes = sample.cover;
        face.iris = sample.cover * sample.iris;
        for (float& cover : face.defects) cover *= 1 - sample.cover;
    }
    face.skin = (1 - face.eyes) * (1 - face.lips);
    return face;
}

void Composer::layFace(Pixel& pixel) const {
    // Nothing of the head lies further than this from its middle.
    constexpr float kReachMm = 175;
    if (length(pixel.centre - m_scene.centre) > kReachMm * m_scene.pixelsPerMm + 2) return;
    const Vec2 at = m_pose.toFace(pixel.centre);
    const float cover = edgeCoverage(-m_shape.polar(at).distance, m_studio.pixelMm, 0.35f);
    if (cover <= 0) return;
    const Face face = paintFace(at, hairShadowAt(pixel.centre));
    pixel.over(face.colour, face.clean, cover, headDepth(m_pose.toCamera({at.x, at.y, face.relief}).z));
    pixel.head = cover;
    pixel.skin += face.skin * cover;
    pixel.eyes = face.eyes * cover;
    pixel.iris = face.iris * cover;
    pixel.lips = face.lips * cover;
    for (std::size_t i = 0; i < kDefects; ++i) pixel.defects[i] = face.defects[i] * cover;
}

void Composer::layBody(Pixel& pixel) const {
    const float shadow = hairShadowAt(pixel.centre);
    const auto lay = [&](const BodySample& sample) {
        if (sample.cover <= 0) return;
        pixel.over(sample.colour, sample.colour, sample.cover, sample.depth);
        pixel.skin += sample.skin * sample.cover;
    };
    lay(paintBody(m_studio, pixel.centre, shadow));
    for (const float side : {-1.0f, 1.0f}) lay(paintEar(m_studio, side, pixel.centre, shadow));
}

void Composer::laySheet(Pixel& pixel, const StrokeSheet& sheet, float& cover) const {
    const StrokeSheet::Sample sample = sheet.at(pixel.x, pixel.y);
    if (sample.cover <= 0) return;
    const Colour colour = sample.colour * (1 / sample.cover);
    pixel.over(colour, colour, sample.cover, sample.depth / sample.cover);
    cover += sample.cover;
}

void Composer::compose(int x, int y, Portrait& portrait) const {
    Pixel pixel{};
    pixel.x = x;
    pixel.y = y;
    pixel.centre = {static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f};
    pixel.colour = pixel.clean = m_background.colourAt(x, y);
    pixel.depth = m_background.depthAt(x, y);
    float lashes = 0;
    laySheet(pixel, m_backHair, pixel.hair);
    layBody(pixel);
    layFace(pixel);
    const float head = pixel.head;
    laySheet(pixel, m_brows, pixel.brows);
    laySheet(pixel, m_lashes, lashes);
    pixel.head = head;  // brows and lashes belong to the face
    laySheet(pixel, m_frontHair, pixel.hair);
    store(pixel, portrait);
}

void Composer::store(const Pixel& pixel, Portrait& portrait) const {
    const std::size_t i = static_cast<std::size_t>(pixel.y) * static_cast<std::size_t>(m_scene.width) +
                          static_cast<std::size_t>(pixel.x);
    m_developer.develop(pixel.colour, pixel.x, pixel.y, &portrait.image.rgba[4 * i]);
    if (m_defects.any())
        m_developer.develop(pixel.clean, pixel.x, pixel.y, &portrait.clean.rgba[4 * i]);
    else
        std::copy_n(&portrait.image.rgba[4 * i], 4, &portrait.clean.rgba[4 * i]);
    const auto byte = [](float cover) { return static_cast<unsigned char>(clamp01(cover) * 255.0f + 0.5f); };
    // Rounded down, so that 255 means that no background shines through.
    portrait.person.samples[i] = static_cast<unsigned char>(clamp01(pixel.person) * 255.0f + 1e-3f);
    portrait.hair.samples[i] = byte(pixel.hair);
    portrait.skin.samples[i] = byte(pixel.skin);
    portrait.face.samples[i] = byte(pixel.head);
    portrait.eyes.samples[i] = byte(pixel.eyes);
    portrait.iris.samples[i] = byte(pixel.iris);
    portrait.brows.samples[i] = byte(pixel.brows);
    portrait.lips.samples[i] = byte(pixel.lips);
    // Rounded up, so that no difference between image and clean goes untold.
    Mask* const masks[kDefects] = {&portrait.dullSkin, &portrait.darkCircles, &portrait.freckles,
                                   &portrait.wrinkles, &portrait.scratches,   &portrait.moles};
    for (std::size_t k = 0; k < kDefects; ++k)
        masks[k]->samples[i] =
            static_cast<unsigned char>(std::ceil(clamp01(pixel.defects[k]) * 255.0f - 1e-3f));
    portrait.depth[i] = clamp01(pixel.depth);
}

void Composer::listMoles(Portrait& portrait) const {
    for (const Mole& mole : m_defects.moles()) {
        const Vec2 at = m_pose.toPicture(mole.centre);
        if (!(at.x >= 0 && at.y >= 0 && at.x < static_cast<float>(m_scene.width) &&
              at.y < static_cast<float>(m_scene.height)))
            continue;
        const std::size_t i = static_cast<std::size_t>(at.y) * static_cast<std::size_t>(m_scene.width) +
                              static_cast<std::size_t>(at.x);
        if (static_cast<float>(portrait.moles.samples[i]) >= 127.5f * mole.darkness)
            portrait.moleSpots.push_back({at.x, at.y, mole.radius * m_scene.pixelsPerMm});
    }
}

}  // namespace zel::drawing
