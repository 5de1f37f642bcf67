#include "portraitOptions.h"

#include <charconv>
#include <stdexcept>

#include "frame/shortNumber.h"

namespace zel {

namespace {

[[noreturn]] void refuse(const std::string& name, const std::string& value, const std::string& wanted) {
    throw std::invalid_argument(name + ": \"" + value + "\" is not " + wanted);
}

double parseNumber(const PortraitOption& option, const std::string& value) {
    double number = 0;
    const char* const end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, number);
    const bool fits =
        result.ec == std::errc() && result.ptr == end && number >= option.minimum && number <= option.maximum;
    if (!fits || (option.whole && number != static_cast<double>(static_cast<int>(number))))
        refuse(option.name, value,
               (option.whole ? "a whole number from " : "a number from ") +
                   zellab::shortNumber(option.minimum) + " to " + zellab::shortNumber(option.maximum));
    return number;
}

/// Member is a std::optional<double>, a double or an int of PortraitParams.
template <typename Member>
PortraitOption number(const char* name, Member member, double minimum, double maximum, const char* help) {
    PortraitOption option{name, help, minimum, maximum, false, {}, {}};
    option.whole = std::is_same_v<Member, int PortraitParams::*>;
    const PortraitOption checked = option;
    option.set = [checked, member](PortraitParams& params, const std::string& value) {
        const double parsed = parseNumber(checked, value);
        if constexpr (std::is_same_v<Member, int PortraitParams::*>)
            params.*member = static_cast<int>(parsed);
        else
            params.*member = parsed;
    };
    return option;
}

template <typename Kind>
PortraitOption choice(const char* name, std::optional<Kind> PortraitParams::*member,
                      std::vector<std::string> words, const char* help) {
    PortraitOption option{name, help, 0, 0, false, words, {}};
    option.set = [name = option.name, words = std::move(words), member](PortraitParams& params,
                                                                        const std::string& value) {
        for (std::size_t i = 0; i < words.size(); ++i)
            if (words[i] == value) {
                params.*member = static_cast<Kind>(i);
                return;
            }
        std::string all;
        for (const std::string& word : words) all += (all.empty() ? "" : ", ") + word;
        refuse(name, value, "one of " + all);
    };
    return option;
}

using P = PortraitParams;

void addPose(std::vector<PortraitOption>& all) {
    all.push_back(
        number("headHeight", &P::headHeight, 0.1, 1.2, "chin to crown as a share of the picture's height"));
    all.push_back(
        number("centreX", &P::centreX, -0.5, 1.5, "middle of the eyes as a share of the picture's width"));
    all.push_back(
        number("centreY", &P::centreY, -0.5, 1.5, "middle of the eyes as a share of the picture's height"));
    all.push_back(number("yaw", &P::yaw, -22, 22, "degrees; above 0 turns to the picture's right"));
    all.push_back(number("roll", &P::roll, -45, 45, "degrees; above 0 leans clockwise"));
    all.push_back(number("tilt", &P::tilt, -12, 12, "degrees; above 0 lifts the chin"));
}

void addPerson(std::vector<PortraitOption>& all) {
    all.push_back(choice("skinTone", &P::skinTone,
                         {"porcelain", "fair", "beige", "olive", "tan", "brown", "ebony"},
                         "colour of the skin"));
    all.push_back(number("masculine", &P::masculine, 0, 1, "0 woman to 1 man"));
    all.push_back(number("faceWidth", &P::faceWidth, 0.85, 1.15, "width of the face, 1 average"));
    all.push_back(number("jawWidth", &P::jawWidth, 0.85, 1.15, "width of the jaw, 1 average"));
    all.push_back(number("chinLength", &P::chinLength, 0.85, 1.15, "length of the lower face, 1 average"));
    all.push_back(number("eyeSize", &P::eyeSize, 0.85, 1.15, "size of the eyes, 1 average"));
    all.push_back(number("eyeSpacing", &P::eyeSpacing, 0.85, 1.15, "distance of the eyes, 1 average"));
    all.push_back(number("eyeSlant", &P::eyeSlant, -1, 1, "above 0 lifts the outer corners"));
    all.push_back(number("eyeOpen", &P::eyeOpen, 0, 1.2, "0 closed, 1 open, 1.2 wide"));
    all.push_back(number("eyeOpenLeft", &P::eyeOpenLeft, 0, 1.2, "the eye at the picture's left alone"));
    all.push_back(number("eyeOpenRight", &P::eyeOpenRight, 0, 1.2, "the eye at the picture's right alone"));
    all.push_back(number("wink", &P::wink, -1, 1, "closes the eye at the picture's left (below 0) or right"));
    all.push_back(number("laugh", &P::laugh, 0, 1, "laughing eyes: narrowed from below"));
    all.push_back(number("gazeX", &P::gazeX, -1, 1, "above 0 looks to the picture's right"));
    all.push_back(number("gazeY", &P::gazeY, -1, 1, "above 0 looks down"));
    all.push_back(choice("irisColour", &P::irisColour,
                         {"paleBlue", "blue", "grey", "green", "hazel", "brown", "nearBlack"},
                         "colour of the irises"));
    all.push_back(number("browThickness", &P::browThickness, 0.4, 1.8, "thickness of the brows, 1 average"));
    all.push_back(number("browArch", &P::browArch, 0, 1, "height of the brows' arch"));
    all.push_back(number("noseWidth", &P::noseWidth, 0.8, 1.25, "width of the nose, 1 average"));
    all.push_back(number("noseLength", &P::noseLength, 0.88, 1.12, "length of the nose, 1 average"));
    all.push_back(number("mouthWidth", &P::mouthWidth, 0.85, 1.15, "width of the mouth, 1 average"));
    all.push_back(number("lipFullness", &P::lipFullness, 0.6, 1.5, "fullness of the lips, 1 average"));
    all.push_back(number("smile", &P::smile, -0.5, 1, "above 0 smiles"));
    all.push_back(number("lipstick", &P::lipstick, 0, 1, "strength of lip colour"));
    all.push_back(number("stubble", &P::stubble, 0, 1, "growth of beard"));
    all.push_back(choice("hairColour", &P::hairColour,
                         {"black", "darkBrown", "brown", "auburn", "darkBlond", "blond", "grey", "white"},
                         "colour of the hair"));
    all.push_back(choice(
        "hairStyle", &P::hairStyle,
        {"shaved", "crop", "sideParted", "swept", "bob", "longStraight", "longWavy", "curly", "tiedBack"},
        "how the hair is worn"));
    all.push_back(choice("clothing", &P::clothing, {"crewNeck", "vNeck", "shirtCollar", "knit"},
                         "what the person wears"));
}

void addScene(std::vector<PortraitOption>& all) {
    all.push_back(choice("background", &P::background,
                         {"plain", "room", "streetLights", "field", "bookshelf"},
                         "what stands behind the person"));
    all.push_back(number("defocus", &P::defocus, 0, 1, "blur of the background"));
    all.push_back(number("lightDirection", &P::lightDirection, -80, 80,
                         "degrees; above 0 the lamp stands at the picture's right"));
    all.push_back(number("lightHeight", &P::lightHeight, -10, 75, "degrees of the lamp above the camera"));
    all.push_back(number("lightWarmth", &P::lightWarmth, -1, 1, "-1 bluish to 1 yellowish"));
    all.push_back(number("lightContrast", &P::lightContrast, 0, 1, "0 all soft to 1 one hard lamp"));
    all.push_back(number("exposure", &P::exposure, -2, 2, "stops lighter or darker"));
    all.push_back(number("noise", &P::noise, 0, 1, "noise of the sensor"));
}

void addLayers(std::vector<PortraitOption>& all) {
    all.push_back(number("moles", &P::moles, 0, 60, "number of moles"));
    all.push_back(number("freckles", &P::freckles, 0, 1, "strength of freckles"));
    all.push_back(number("wrinkles", &P::wrinkles, 0, 1, "strength of wrinkles"));
    all.push_back(number("darkCircles", &P::darkCircles, 0, 1, "strength of the shadows under the eyes"));
    all.push_back(number("dullSkin", &P::dullSkin, 0, 1, "how grey and flat the face's skin is"));
    all.push_back(number("scratches", &P::scratches, 0, 20, "number of scratches"));
}

}  // namespace

const std::vector<PortraitOption>& portraitOptions() {
    static const std::vector<PortraitOption> all = [] {
        std::vector<PortraitOption> options;
        addPose(options);
        addPerson(options);
        addScene(options);
        addLayers(options);
        return options;
    }();
    return all;
}

void setPortraitOption(PortraitParams& params, const std::string& name, const std::string& value) {
    for (const PortraitOption& option : portraitOptions())
        if (option.name == name) return option.set(params, value);
    throw std::invalid_argument("\"" + name + "\" is no option of the portrait");
}

}  // namespace zel
