#include "libzel/effectRegistry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "effectSupport.h"

namespace {

using testing::HasSubstr;

zel::Effect sampleEffect() {
    zel::Effect effect;
    effect.name = "sample";
    effect.parameters = {{"amount", ZEL_NUMBER, -1, 1, "0.5", "", {}},
                         {"free", ZEL_NUMBER, 0, 0, "0", "", {}},
                         {"radius", ZEL_WHOLE_NUMBER, 1, 20, "", "", {}},
                         {"soft", ZEL_SWITCH, 0, 0, "false", "", {}},
                         {"mode", ZEL_CHOICE, 0, 0, "fast", "", {"fast", "fine"}},
                         {"place", ZEL_POINT, 0, 0, "auto", "", {"auto"}},
                         {"tint", ZEL_COLOUR, 0, 0, "#ff8800", "", {}}};
    return effect;
}

std::string usageErrorOf(const std::vector<std::string>& words) {
    return zeltest::faultOf([&] { zeltest::valuesOf(sampleEffect(), words); });
}

TEST(ParameterValues, FillDefaultsAndKeepTheLastWord) {
    const auto values = zeltest::valuesOf(
        sampleEffect(), {"radius=3", "soft=on", "radius=7", "free=1e6", "amount=-1", "place=0.25,1"});
    EXPECT_EQ(values.integer("radius"), 7);
    EXPECT_FLOAT_EQ(values.number("amount"), -1.0f);
    EXPECT_FLOAT_EQ(values.number("free"), 1e6f);
    EXPECT_TRUE(values.toggle("soft"));
    EXPECT_EQ(values.text("mode"), "fast");
    EXPECT_EQ(values.point("place"), (std::pair{0.25f, 1.0f}));
    EXPECT_EQ(zeltest::valuesOf(sampleEffect(), {"radius=3"}).point("place"), std::nullopt);
}

TEST(ParameterValues, RefuseWhatAnEffectCouldNotMean) {
    for (const char* word :
         {"amount=nan",    "amount=inf",         "amount=1.01",   "amount=",   "amount=0.5x", "amount= 0.5",
          "amount=1e-60",  "free=1e39",          "free=nan",      "free=-inf", "radius=0",    "radius=21",
          "radius=2.5",    "radius=99999999999", "soft=maybe",    "mode=Fast", "=3",          "place=0.5",
          "place=0.5,1.1", "place=0.5,",         "place=nan,0.5", "tint=red",  "tint=#12345", "tint=#12345g"})
        EXPECT_NE(usageErrorOf({"radius=3", word}), "accepted") << word;
    EXPECT_THAT(usageErrorOf({}), HasSubstr("radius"));
    EXPECT_THAT(usageErrorOf({"radius=21"}), HasSubstr("1..20"));
    EXPECT_THAT(usageErrorOf({"raduis=2"}), HasSubstr("did you mean 'radius'?"));
}

TEST(EffectRegistry, EveryEffectIsCompleteAndItsDefaultsAreInRange) {
    std::set<std::string> names;
    for (const zel::Effect& effect : zel::allEffects()) {
        SCOPED_TRACE(effect.name);
        EXPECT_TRUE(names.insert(effect.name).second) << "listed twice";
        EXPECT_TRUE(effect.run && !effect.summary.empty() && !effect.operation.empty());
        EXPECT_TRUE(effect.advice.ends_with(".")) << "when to use it";
        EXPECT_EQ(effect.example.rfind("zel apply " + effect.name + " ", 0), 0u) << effect.example;
        std::vector<std::string> defaults;
        for (const auto& parameter : effect.parameters)
            if (!parameter.defaultValue.empty())
                defaults.push_back(parameter.name + "=" + parameter.defaultValue);
        // A parameter without a default is the one thing that may be missing.
        EXPECT_THAT(zeltest::faultOf([&] { zeltest::valuesOf(effect, defaults); }),
                    testing::AnyOf("accepted", HasSubstr(" needs a value for ")));
    }
    EXPECT_THROW(zel::findEffect(""), zel::Failure);
}

TEST(EffectChecks, TellBothSizes) {
    const zel::Mask mask{3, 4, std::vector<unsigned char>(12)};
    EXPECT_EQ(
        zeltest::faultOf([&] { zeltest::applied("inpaint", zeltest::testImage(4, 3, 1), {}, {}, &mask); }),
        "the mask is 3 by 4 pixels, the picture 4 by 3");
}

}  // namespace
