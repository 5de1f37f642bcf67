// The C interface as a host sees it: the shared library through its header alone.
#include "zel/zel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <thread>

#include "hostScene.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/workingFolder.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

std::vector<const zel_effect*> effects() {
    std::vector<const zel_effect*> all;
    for (std::size_t i = 0; i < zel_effect_count(); ++i) all.push_back(zel_effect_at(i));
    return all;
}

const zel_effect& effectNamed(const char* name) {
    const zel_effect* effect = nullptr;
    libzel::require(zel_effect_find(name, &effect));
    return *effect;
}

class Interface : public testing::Test {
protected:
    const libzel::Context context = libzel::createContext();
    HostScene scene{context.get()};
};

TEST_F(Interface, StridesOrdersAndAlphaChangeNothingAboutTheResult) {
    for (const zel_effect* effect : effects()) {
        SCOPED_TRACE(effect->name);
        const Bytes expected = retouched(context.get(), scene, *effect);
        const auto width = static_cast<std::size_t>(scene.picture.width),
                   height = static_cast<std::size_t>(scene.picture.height), stride = 4 * width + 12;
        constexpr unsigned char kBetween = 0xA5;
        Bytes padded(stride * height, kBetween);
        const Bytes before = scene.bytes();
        const auto at = [&](std::size_t x, std::size_t y, std::size_t c) {  // blue first
            return y * stride + 4 * x + (c < 3 ? 2 - c : 3);
        };
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t i = 0; i < 4 * width; ++i)
                padded[at(i / 4, y, i % 4)] = before[4 * width * y + i];
        const zel_pixels pixels{padded.data(), scene.picture.width, scene.picture.height,
                                stride,        ZEL_BGRA8,           ZEL_PREMULTIPLIED};
        zel_inputs inputs = scene.inputsFor(*effect);
        const libzel::Values values = neededValues(*effect);
        inputs.values = values.list().data();
        inputs.value_count = values.list().size();
        ASSERT_EQ(zel_apply(context.get(), effect->name, &pixels, &inputs), ZEL_OK) << zel_message();
        Bytes after(before.size());
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t i = 0; i < 4 * width; ++i)
                after[4 * width * y + i] = padded[at(i / 4, y, i % 4)];
            for (std::size_t i = 4 * width; i < stride; ++i) ASSERT_EQ(padded[y * stride + i], kBetween);
        }
        EXPECT_TRUE(after == expected);
    }
}

// As a careless host would: pictures that are a pixel or a line, values at both ends of their ranges.
TEST_F(Interface, EveryEffectTakesPicturesOfAnyShapeAndValuesAtTheirEnds) {
    constexpr unsigned char kBetween = 0xA5;
    constexpr std::size_t kGap = 8;
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 600}, {600, 1}, {3, 2}})
        for (const zel_effect* effect : effects())
            for (const int end : {0, 1, 2}) {
                SCOPED_TRACE(testing::Message()
                             << effect->name << " on " << width << " by " << height << ", end " << end);
                const std::size_t row = 4 * static_cast<std::size_t>(width), stride = row + kGap,
                                  rows = static_cast<std::size_t>(height);
                Bytes bytes(stride * rows, kBetween), other(row * rows, 90), marks(row * rows / 4, 255);
                const zel_pixels pixels{bytes.data(), width, height, stride, ZEL_RGBA8, 0},
                    second{other.data(), width, height, 0, ZEL_RGBA8, 0},
                    grey{marks.data(), width, height, 0, ZEL_GRAY8, 0};
                zel_inputs inputs = scene.inputsFor(*effect);
                if (inputs.second) inputs.second = &second;
                for (const zel_pixels** plane :
                     {&inputs.mask, &inputs.depth, &inputs.mask_out, &inputs.depth_out})
                    if (*plane) *plane = &grey;
                const libzel::Values needed = neededValues(*effect);
                std::vector<zel_value> values = needed.list();
                for (std::size_t i = 0; i < effect->parameter_count && end > 0; ++i) {
                    const zel_parameter& parameter = *effect->parameters[i];
                    if (parameter.minimum < parameter.maximum &&
                        std::strcmp(parameter.name, "faceIndex") != 0)
                        values.push_back(
                            {parameter.name, nullptr, end == 1 ? parameter.minimum : parameter.maximum});
                }
                inputs.values = values.data();
                inputs.value_count = values.size();
                const Bytes before = bytes;
                const zel_status status = zel_apply(context.get(), effect->name, &pixels, &inputs);
                EXPECT_TRUE(status == ZEL_OK || status == ZEL_FAILED) << zel_message();
                if (status != ZEL_OK) {
                    EXPECT_TRUE(bytes == before) << zel_message();
                }
                for (std::size_t y = 0; y < rows; ++y)
                    for (std::size_t i = row; i < stride; ++i)
                        ASSERT_EQ(bytes[y * stride + i], kBetween) << "beside row " << y;
            }
}

TEST_F(Interface, PremultipliedPixelsThatNothingChangesStay) {
    Bytes pixels;
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int colour = 0; colour <= alpha; ++colour)
            pixels.insert(pixels.end(),
                          {static_cast<unsigned char>(colour), static_cast<unsigned char>(alpha - colour),
                           static_cast<unsigned char>(colour / 2), static_cast<unsigned char>(alpha)});
    const Bytes before = pixels;
    const zel_pixels view{pixels.data(),    static_cast<int>(pixels.size() / 4 / 128), 128, 0, ZEL_RGBA8,
                          ZEL_PREMULTIPLIED};
    libzel::apply(context.get(), "color-mixing", view);  // all at their neutral defaults
    EXPECT_TRUE(pixels == before);
}

TEST_F(Interface, HostileCallsGetAStatusAndTouchNothing) {
    Bytes bytes = scene.bytes();
    const Bytes before = bytes;
    zel_pixels good = scene.picture;
    good.data = bytes.data();
    const auto changed = [&](auto change) {
        zel_pixels pixels = good;
        change(pixels);
        return pixels;
    };
    const zel_pixels bad[] = {changed([](auto& p) { p.data = nullptr; }),
                              changed([](auto& p) { p.width = 0; }),
                              changed([](auto& p) { p.height = -1; }),
                              changed([](auto& p) { p.width = p.height = 32768; }),
                              changed([](auto& p) { p.width = p.height = 32767; }),
                              changed([](auto& p) { p.stride = 4u * static_cast<unsigned>(p.width) - 1; }),
                              changed([](auto& p) { p.stride = std::numeric_limits<std::size_t>::max(); }),
                              changed([](auto& p) { p.format = ZEL_GRAY8; }),
                              changed([](auto& p) { p.format = static_cast<zel_format>(77); }),
                              changed([](auto& p) { p.flags = 2; })};
    zel_faces* faces = nullptr;
    for (const zel_pixels& pixels : bad) {
        EXPECT_EQ(zel_apply(context.get(), "gauss-blur", &pixels, nullptr), ZEL_BAD_ARGUMENT)
            << zel_message();
        EXPECT_EQ(zel_find_faces(context.get(), &pixels, &faces), ZEL_BAD_ARGUMENT);
        EXPECT_EQ(zel_estimate_depth(context.get(), &pixels, nullptr, &scene.mask), ZEL_BAD_ARGUMENT);
    }
    alignas(zel_pixels) unsigned char room[sizeof(zel_pixels) + 1];
    EXPECT_EQ(zel_apply(context.get(), "gauss-blur", reinterpret_cast<zel_pixels*>(room + 1), nullptr),
              ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_apply(nullptr, "gauss-blur", &good, nullptr), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_apply(context.get(), nullptr, &good, nullptr), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_apply(context.get(), "gauss-blur", nullptr, nullptr), ZEL_BAD_ARGUMENT);
    zel_inputs unsized{};
    EXPECT_EQ(zel_apply(context.get(), "gauss-blur", &good, &unsized), ZEL_BAD_ARGUMENT);

    zel_faces* const nowhere = reinterpret_cast<zel_faces*>(~std::uintptr_t{0} / 3);
    zel_inputs cut = unsized;
    cut.struct_size = offsetof(zel_inputs, faces) + 3;  // ends within a pointer, which then does not count
    cut.faces = nowhere;
    EXPECT_EQ(zel_apply(context.get(), "auto-slim-face", &good, &cut), ZEL_MISSING_INPUT);

    const auto status = [&](const char* effect, const zel_value& value) {
        auto inputs = libzel::sized<zel_inputs>();
        inputs.values = &value;
        inputs.value_count = 1;
        return zel_apply(context.get(), effect, &good, &inputs);
    };
    EXPECT_EQ(status("gaus-blur", {"radius", "3", 0}), ZEL_UNKNOWN_NAME);
    EXPECT_THAT(zel_message(), HasSubstr("did you mean 'gauss-blur'?"));
    EXPECT_EQ(status("gauss-blur", {"raduis", "3", 0}), ZEL_UNKNOWN_NAME);
    EXPECT_THAT(zel_message(), HasSubstr("did you mean 'radius'?"));
    EXPECT_EQ(status("gauss-blur", {"radius", nullptr, std::nan("")}), ZEL_BAD_VALUE);
    EXPECT_EQ(status("gauss-blur", {"radius", nullptr, 2.5}), ZEL_BAD_VALUE);
    EXPECT_EQ(status("gauss-blur", {nullptr, "3", 0}), ZEL_BAD_ARGUMENT);
    const zel_value seed{"seed", nullptr, 100000};
    EXPECT_EQ(zel_check_values("inpaint", &seed, 1, nullptr), ZEL_OK) << zel_message();
    EXPECT_EQ(status("slim-face", {"radius", "0.1", 0}), ZEL_BAD_VALUE) << "a drag must be told";
    EXPECT_EQ(status("auto-slim-face", {"strength", "1", 0}), ZEL_MISSING_INPUT);
    EXPECT_EQ(status("inpaint", {"seed", "1", 0}), ZEL_MISSING_INPUT);

    auto inputs = libzel::sized<zel_inputs>();
    inputs.mask = &scene.mask;
    EXPECT_EQ(zel_apply(context.get(), "gauss-blur", &good, &inputs), ZEL_MISSING_INPUT)
        << "it takes no mask";
    zel_pixels otherSize = scene.mask;
    otherSize.height /= 2;
    inputs.mask = &otherSize;
    EXPECT_EQ(zel_apply(context.get(), "inpaint", &good, &inputs), ZEL_BAD_ARGUMENT);
    zel_pixels colour = good;
    EXPECT_EQ(zel_estimate_depth(context.get(), &good, nullptr, &colour), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_make_mask(context.get(), ZEL_MASK_SKIN, &good, nullptr, &scene.mask), ZEL_NOT_AVAILABLE);
    {
        const Environment none("ZEL_NETWORKS", "");
        EXPECT_EQ(zel_make_mask(context.get(), ZEL_MASK_PERSON, &good, nullptr, &scene.mask),
                  ZEL_NOT_AVAILABLE);
        EXPECT_THAT(zel_message(), HasSubstr("ZEL_NETWORKS is empty"));
    }
    auto depthOptions = libzel::sized<zel_depth_options>();
    depthOptions.person_out = &otherSize;
    EXPECT_EQ(zel_estimate_depth(context.get(), &good, &depthOptions, &scene.mask), ZEL_BAD_ARGUMENT);
    depthOptions.person_out = nullptr;
    const int noSubject = 7;
    std::memcpy(&depthOptions.subject, &noSubject, sizeof noSubject);
    EXPECT_EQ(zel_estimate_depth(context.get(), &good, &depthOptions, &scene.mask), ZEL_BAD_ARGUMENT);
    EXPECT_TRUE(bytes == before);

    zel_face face{};
    EXPECT_EQ(zel_faces_create(&face, 1, 10, 10, &faces), ZEL_BAD_VALUE) << "no width";
    face.rect[2] = face.rect[3] = 0.5f;
    face.points[82][1] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(zel_faces_create(&face, 1, 10, 10, &faces), ZEL_BAD_VALUE);
    face.points[82][1] = 0;
    face.guessed[ZEL_GROUP_MOUTH] = 1.5f;
    EXPECT_EQ(zel_faces_create(&face, 1, 10, 10, &faces), ZEL_BAD_VALUE);
    EXPECT_EQ(zel_faces_create(&face, std::numeric_limits<std::size_t>::max(), 10, 10, &faces),
              ZEL_BAD_ARGUMENT);
    EXPECT_EQ(faces, nullptr);
    EXPECT_EQ(zel_faces_get(scene.faces.get(), 1, &face), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_faces_from_json("{}", 2, &faces), ZEL_BAD_FILE);
    zel_picture* picture = nullptr;
    EXPECT_EQ(zel_decode_memory(context.get(), "none", 4, nullptr, &picture), ZEL_BAD_FILE);
    EXPECT_EQ(zel_decode_file(context.get(), "/nowhere/a.png", nullptr, &picture), ZEL_BAD_FILE);
    zel_portrait* portrait = nullptr;
    EXPECT_EQ(zel_draw_portrait(context.get(), 0, 9, 1, nullptr, 0, &portrait), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_effect_at(zel_effect_count()), nullptr);
    zel_context_destroy(nullptr);
    zel_faces_destroy(nullptr);
    zel_picture_destroy(nullptr);
    zel_portrait_destroy(nullptr);
}

TEST_F(Interface, AHostThatSaysNoGetsItsPictureBackAndMayCallFromWithin) {
    struct Host {
        zel_context* context;
        int calls = 0, last = 0;
        std::vector<double> fractions;
    } host{context.get(), 0, 0, {}};
    const auto progress = [](void* user, double fraction, const char* stage) {
        auto& own = *static_cast<Host*>(user);
        own.fractions.push_back(fraction);
        unsigned char inner[4 * 64] = {};
        const zel_pixels pixels{inner, 8, 8, 0, ZEL_RGBA8, 0};
        EXPECT_EQ(zel_apply(own.context, "mosaic", &pixels, nullptr), ZEL_OK) << stage;
        return ++own.calls > own.last ? 1 : 0;
    };
    const zel_effect& effect = effectNamed("auto-zoom-eye");
    const Bytes before = scene.bytes();
    zel_inputs inputs = scene.inputsFor(effect);
    inputs.progress = progress;
    inputs.progress_user = &host;
    for (host.last = 0; host.last < 10; ++host.last) {
        host.calls = 0;
        const zel_status status = zel_apply(context.get(), effect.name, &scene.picture, &inputs);
        if (status == ZEL_OK) break;
        ASSERT_EQ(status, ZEL_CANCELLED);
        EXPECT_TRUE(scene.bytes() == before) << "after " << host.last;
    }
    EXPECT_GE(host.last, 2) << "asked at its beginning, for the face and at its end";
    EXPECT_LT(host.last, 10);
    EXPECT_EQ(host.fractions.back(), 1.0);
    EXPECT_FALSE(scene.bytes() == before);
}

/// What one context says, and from how many threads at most.
struct Listener {
    std::mutex mutex;
    std::vector<std::string> lines;
    static void hear(void* user, zel_log_level, const char* message, const char*) {
        auto& own = *static_cast<Listener*>(user);
        const std::lock_guard<std::mutex> lock(own.mutex);
        own.lines.emplace_back(message);
    }
};

TEST(Contexts, TwoWithDifferentSettingsAtOnceNeverMeet) {
    const ScratchFolder empty;
    Listener first, second;
    const auto contextFor = [](Listener& listener, const char* assets, int threads) {
        auto settings = libzel::sized<zel_settings>();
        settings.log = Listener::hear;
        settings.log_user = &listener;
        settings.assets = assets;
        settings.threads = threads;
        return libzel::createContext(&settings);
    };
    const libzel::Context whole = contextFor(first, nullptr, 3);
    const libzel::Context bare = contextFor(second, empty.path().c_str(), 1);
    HostScene scene(whole.get());
    const zel_effect &look = effectNamed("scenario"), &smooth = effectNamed("nature-smooth");
    const Bytes expected = retouched(whole.get(), scene, look),
                smoothed = retouched(whole.get(), scene, smooth);
    first.lines.clear();
    std::thread other([&] {
        HostScene own(whole.get());
        unsigned char pixel[4] = {};
        const zel_pixels tiny{pixel, 1, 1, 0, ZEL_RGBA8, 0};
        for (int i = 0; i < 8; ++i) {
            EXPECT_TRUE(retouched(bare.get(), own, smooth) == smoothed);
            EXPECT_EQ(zel_apply(bare.get(), look.name, &tiny, nullptr), ZEL_BAD_ASSET);
            zel_picture* none = nullptr;
            EXPECT_EQ(zel_decode_memory(bare.get(), "none", 4, nullptr, &none), ZEL_BAD_FILE);
        }
    });
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(retouched(whole.get(), scene, look) == expected);
    other.join();
    const auto decoding = testing::Contains(HasSubstr("loadImageFromMemory"));
    EXPECT_THAT(first.lines, testing::Not(decoding));
    EXPECT_THAT(second.lines, decoding);
    EXPECT_STREQ(zel_context_assets(bare.get()), empty.path().c_str());

    zel_context* none = nullptr;
    auto settings = libzel::sized<zel_settings>();
    settings.assets = "/nowhere";
    EXPECT_EQ(zel_context_create(&settings, &none), ZEL_BAD_ASSET);
    settings.assets = nullptr;
    settings.threads = 257;
    EXPECT_EQ(zel_context_create(&settings, &none), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(none, nullptr);
}

TEST(Contexts, TellWhichNetworksTheyFindAndRefuseADamagedOneOfTheirOwn) {
    const ScratchFolder assets;
    std::filesystem::create_directory(assets / "depth");
    const auto contextAt = [](const std::string& folder) {
        auto settings = libzel::sized<zel_settings>();
        settings.assets = folder.c_str();
        return libzel::createContext(&settings);
    };
    const libzel::Context whole = libzel::createContext(), bare = contextAt(assets.path().string());
    const auto depthIn = [](const libzel::Context& context) {
        const zel_network* network = nullptr;
        libzel::require(zel_network_at(context.get(), zel_network_count() - 1, &network));
        EXPECT_STREQ(network->name, "portrait_depth.onnx");
        return *network;
    };
    EXPECT_STREQ(depthIn(whole).problem, "");
    EXPECT_THAT(depthIn(whole).path, HasSubstr("/depth/portrait_depth.onnx"));
    EXPECT_THAT(depthIn(bare).problem, HasSubstr("no such file"));
    EXPECT_STREQ(depthIn(bare).path, "");
    Bytes file = readBytes(depthIn(whole).path);
    file[file.size() / 2] ^= 1;  // in a weight: it would run
    assets.write("depth/portrait_depth.onnx", file);
    EXPECT_THAT(depthIn(bare).problem, HasSubstr("is damaged"));
    EXPECT_EQ(zel_check_depth(bare.get(), nullptr), ZEL_BAD_ASSET);
    EXPECT_THAT(zel_message(), HasSubstr("portrait_depth.onnx: is damaged"));
    EXPECT_EQ(zel_check_depth(bare.get(), (assets / "depth/portrait_depth.onnx").c_str()), ZEL_OK)
        << "one that is told may be any";

    const Environment networks("ZEL_NETWORKS", assets.path().c_str());
    HostScene scene(whole.get());
    const auto maskStatus = [&] {
        return zel_make_mask(whole.get(), ZEL_MASK_PERSON, &scene.picture, nullptr, &scene.mask);
    };
    EXPECT_EQ(maskStatus(), ZEL_NOT_AVAILABLE);
    assets.write("personMask.onnx", file);
    EXPECT_EQ(maskStatus(), ZEL_BAD_ASSET);
    EXPECT_THAT(zel_message(), HasSubstr("personMask.onnx: is damaged"));

    const zel_network* none = nullptr;
    EXPECT_EQ(zel_network_at(whole.get(), zel_network_count(), &none), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_network_at(nullptr, 0, &none), ZEL_BAD_ARGUMENT);
    EXPECT_EQ(zel_network_at(whole.get(), 0, nullptr), ZEL_BAD_ARGUMENT);
}

TEST(Contexts, WithoutOpenGlAndInAnyFolderAndOnAnyNumberOfThreads) {
    const ScratchFolder elsewhere;
    const WorkingFolder working(elsewhere.path().string());
    auto settings = libzel::sized<zel_settings>();
    settings.gl = ZEL_GL_NEVER;
    settings.threads = 1;
    const libzel::Context one = libzel::createContext(&settings);
    settings.threads = 5;
    const libzel::Context five = libzel::createContext(&settings);
    HostScene scene(one.get());
    for (const zel_effect* effect : effects()) {
        EXPECT_NE(effect->gl, ZEL_REQUIRED);
        EXPECT_TRUE(retouched(one.get(), scene, *effect) == retouched(five.get(), scene, *effect))
            << effect->name;
    }
}

TEST(Contexts, NothingIsWrittenToTheStreamsOfTheHost) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        const libzel::Context context = libzel::createContext();
        HostScene scene(context.get());
        for (const zel_effect* effect : effects()) retouched(context.get(), scene, *effect);
        zel_picture* picture = nullptr;
        EXPECT_EQ(zel_decode_memory(context.get(), "none", 4, nullptr, &picture), ZEL_BAD_FILE);
        const libzel::Faces faces = libzel::findFaces(context.get(), scene.picture);
        EXPECT_EQ(zel_estimate_depth(context.get(), &scene.picture, nullptr, &scene.mask), ZEL_OK);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Contexts, WorkAfterAForkAndDieInAnyOrder) {
    libzel::Context context = libzel::createContext();
    HostScene scene(context.get(), 120, 160);
    const zel_effect& effect = effectNamed("nature-smooth");
    const Bytes expected = retouched(context.get(), scene, effect);
    const pid_t child = fork();
    if (child == 0) _exit(retouched(context.get(), scene, effect) == expected ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    context.reset();
    zel_face face = libzel::faceAt(scene.faces.get(), 0);
    EXPECT_GT(face.rect[2], 0) << "faces live on without their context";
    const libzel::Faces again = libzel::facesFromJson(libzel::toJson(scene.faces.get()));
    const zel_face same = libzel::faceAt(again.get(), 0);
    for (int i = 0; i < ZEL_LANDMARKS; ++i)
        EXPECT_TRUE(std::equal(face.points[i], face.points[i] + 2, same.points[i])) << i;
}

}  // namespace
