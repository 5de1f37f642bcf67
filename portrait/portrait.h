#pragma once

#include <array>
#include <optional>
#include <vector>

#include "faces.h"
#include "image.h"

/// The built-in synthetic portrait: a person before a background, drawn from a seed, with the exact truth
/// about everything in it. It stands in for a photograph wherever one must be measured against: demo, tests,
/// benchmarks and the training of the depth network.

namespace zel {

enum class SkinTone { porcelain, fair, beige, olive, tan, brown, ebony };
enum class IrisColour { paleBlue, blue, grey, green, hazel, brown, nearBlack };
enum class HairColour { black, darkBrown, brown, auburn, darkBlond, blond, grey, white };
enum class HairStyle { shaved, crop, sideParted, swept, bob, longStraight, longWavy, curly, tiedBack };
enum class BackgroundKind { plain, room, streetLights, field, bookshelf };
enum class Clothing { crewNeck, vNeck, shirtCollar, knit };

/// What to draw. The seed alone gives a whole person and scene; every aspect that is set overrides the seed's
/// choice and leaves all others as they were. Values outside their range are moved to its nearer end, NaN
/// counts as not set.
struct PortraitParams {
    int width = 900, height = 1200;  // pixels, 1 to 16384 each
    unsigned seed = 1;

    // Place and pose of the head.
    std::optional<double> headHeight;        // chin to crown as a share of the picture's height, 0.1 to 1.2
    std::optional<double> centreX, centreY;  // of the face, as shares of the picture, -0.5 to 1.5
    std::optional<double> yaw;               // degrees, -22 to 22; above 0 turns to the picture's right
    std::optional<double> roll;              // degrees, -45 to 45; above 0 turns clockwise
    std::optional<double> tilt;              // degrees, -12 to 12; above 0 lifts the chin

    // The person. Shares are factors on an average face.
    std::optional<SkinTone> skinTone;
    std::optional<double> masculine;                        // 0 to 1: jaw, brows, lashes, choice of hair
    std::optional<double> faceWidth, jawWidth, chinLength;  // 0.85 to 1.15
    std::optional<double> eyeSize, eyeSpacing;              // 0.85 to 1.15
    std::optional<double> eyeSlant;                         // -1 to 1; above 0 lifts the outer corners
    std::optional<double> eyeOpen;                          // 0 closed, 1 open, 1.2 wide
    std::optional<double> eyeOpenLeft, eyeOpenRight;        // the same for one eye, of the picture's sides
    std::optional<double> wink;   // -1 to 1: closes the eye at the picture's left (below 0) or right, and
                                  // squeezes its lower lid up
    std::optional<double> laugh;  // 0 to 1: narrows the eyes from below, as cheeks do that laugh
    std::optional<double> gazeX, gazeY;  // -1 to 1; right and down
    std::optional<IrisColour> irisColour;
    std::optional<double> browThickness, browArch;  // 0.4 to 1.8; 0 to 1
    std::optional<double> noseWidth, noseLength;    // 0.8 to 1.25; 0.88 to 1.12
    std::optional<double> mouthWidth, lipFullness;  // 0.85 to 1.15; 0.6 to 1.5
    std::optional<double> smile;                    // -0.5 to 1
    std::optional<double> lipstick;                 // 0 to 1
    std::optional<double> stubble;                  // 0 to 1
    std::optional<HairColour> hairColour;
    std::optional<HairStyle> hairStyle;
    std::optional<Clothing> clothing;

    // The scene.
    std::optional<BackgroundKind> background;
    std::optional<double> defocus;         // blur of the background, 0 to 1
    std::optional<double> lightDirection;  // degrees, -80 (from the left) to 80
    std::optional<double> lightHeight;     // degrees above the camera, -10 to 75
    std::optional<double> lightWarmth;     // -1 bluish to 1 yellowish
    std::optional<double> lightContrast;   // 0 all soft, 1 one hard lamp
    std::optional<double> exposure;        // stops, -2 to 2
    std::optional<double> noise;           // sensor noise, 0 to 1

    // Layers that Portrait::clean lacks. All off as long as nobody asks.
    int moles = 0;           // number, 0 to 60
    double freckles = 0;     // 0 to 1
    double wrinkles = 0;     // 0 to 1: crow's feet, forehead, nose to mouth
    double darkCircles = 0;  // 0 to 1
    double dullSkin = 0;     // 0 to 1: grey, flat, yellowish
    int scratches = 0;       // number, 0 to 20
};

/// A round thing in the picture, in pixels; pixel centres lie at halves.
struct Spot {
    float x = 0, y = 0, radius = 0;
};

/// A drawn portrait and the truth about it. Every mask and the depth have the picture's size; masks hold soft
/// coverage from 0 to 255, as seen: what hair hides is not in the mask of the skin below.
struct Portrait {
    Image image;
    Image clean;    // the same picture with the same noise, without moles, freckles, wrinkles, dark circles,
                    // dull skin and scratches
    FaceSet faces;  // one face, its 83 landmarks exact also where hair hides them

    Mask person;  // everything that is not background
    Mask hair;    // scalp hair
    Mask skin;    // face, ears and neck without eyes, lips, brows and hair
    Mask face;    // the face's whole front, features included, hair excluded
    Mask eyes;    // whites and irises between the lids
    Mask iris;    // irises with their pupils
    Mask brows;
    Mask lips;

    // Where image and clean differ, at least one of these is above 0.
    Mask moles, freckles, wrinkles, darkCircles, dullSkin, scratches;

    std::array<Spot, 2> irises;   // left, right of the picture; full circles, whatever the lids hide
    std::vector<Spot> moleSpots;  // those at least half visible
    std::vector<float> depth;     // 0 far to 1 near, one a pixel
};

/// Draws the portrait. The same parameters give the same bytes on every machine and any number of threads.
/// Throws std::invalid_argument where a size lies outside 1 to 16384.
Portrait drawPortrait(const PortraitParams& params);

}  // namespace zel
