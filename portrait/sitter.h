#pragma once

#include "portrait.h"
#include "portraitMath.h"

namespace zel::drawing {

/// The person, decided to the last number. Lengths are factors on an average face unless told otherwise.
struct Sitter {
    unsigned seed = 1;
    float masculine = 0.5f;
    SkinTone tone{};
    Colour skin;         // linear reflectance of the base tone
    float melanin = 0;   // 0 very light to 1 very dark
    float flush = 0.5f;  // how red cheeks, nose and ears are, 0 to 1
    float oil = 0.5f;    // shine, 0 to 1
    float faceWidth = 1, jawWidth = 1, chinLength = 1, foreheadHeight = 1, cheeks = 1;
    float eyeSize = 1, eyeSpacing = 1, eyeSlant = 0, crease = 1;
    float eyeOpen[2] = {1, 1};  // picture's left, right
    float wink = 0, laugh = 0;
    Vec2 gaze;
    Colour irisInner, irisOuter;
    float irisDarkness = 0;                                    // 0 pale to 1 near black
    float browThickness = 1, browArch = 0.5f, browHeight = 0;  // height in mm
    float noseWidth = 1, noseLength = 1, noseTip = 1;
    float mouthWidth = 1, lipFullness = 1, smile = 0, lipstick = 0;
    Colour lipTint;
    float stubble = 0;
    HairStyle style{};
    Colour hair, hairSheen, browHair;
    float partSide = 1;  // -1 or 1: the side of the picture with the part
    float hairVolume = 1;
    Clothing clothing{};
    Colour cloth;
};

/// Where the head stands, and the light and room about it.
struct Scene {
    int width = 1, height = 1;
    unsigned seed = 1;
    float pixelsPerMm = 1;
    Vec2 centre;                        // pixel of the face's origin between the eyes
    float yaw = 0, roll = 0, tilt = 0;  // radians
    Vec3 keyDirection;                  // towards the lamp
    Colour key, fill, sky;              // lamp, light from the camera's side, light from above
    BackgroundKind background{};
    float defocus = 0.5f;
    float exposure = 1;
    float noise = 0.2f;
};

/// Every choice of the seed is drawn whether or not it is overridden, so that setting one aspect leaves the
/// rest.
Sitter resolveSitter(const PortraitParams& params);
/// The camera meters on the sitter: dark skin gets a little more light, very light skin less.
Scene resolveScene(const PortraitParams& params, const Sitter& sitter);

/// `given` moved into the range, or `chosen` where it is not set or not a number.
float settled(const std::optional<double>& given, float chosen, float minimum, float maximum);

}  // namespace zel::drawing
