// The studio behind its page: who gets in, what names lead to, what cancels what, and what chains give.
#include <gmock/gmock.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>

#include "cli/library.h"
#include "cli/studio/chainRun.h"
#include "cli/studio/folder.h"
#include "cli/studio/guard.h"
#include "cli/studio/pixels.h"
#include "cli/studio/workQueue.h"
#include "hostSupport.h"

namespace zelcli::studio {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zeltest::TemporaryFolder;
using zeltest::testImage;

const Address kAddress{4321, "0123456789abcdef0123456789abcdef"};

RequestHead question(const std::string& path = "api/folder") {
    return {"GET", "/" + kAddress.secret + "/" + path, {{"Host", "127.0.0.1:4321"}}};
}

RequestHead order(const std::string& path = "api/open", const std::string& type = "application/json",
                  const std::string& length = "10") {
    RequestHead head = question(path);
    head.method = "POST";
    head.headers.insert(
        head.headers.end(),
        {{"Origin", "http://127.0.0.1:4321"}, {"Content-Type", type}, {"Content-Length", length}});
    return head;
}

int statusOf(const RequestHead& head) {
    const auto refusal = refusalOf(head, kAddress);
    return refusal ? refusal->status : 200;
}

RequestHead with(RequestHead head, const std::string& name, const std::string& value) {
    std::erase_if(head.headers, [&](const auto& header) { return header.first == name; });
    head.headers.emplace_back(name, value);
    return head;
}

TEST(StudioGuard, LetsItsOwnPageIn) {
    EXPECT_EQ(statusOf(question("")), 200);
    EXPECT_EQ(statusOf(with(question(), "Host", "localhost:4321")), 200);
    EXPECT_EQ(statusOf(with(question(), "Sec-Fetch-Site", "same-origin")), 200);
    EXPECT_EQ(statusOf(order()), 200);
    EXPECT_EQ(statusOf(order("api/plane", "application/octet-stream", "100000000")), 200);
}

TEST(StudioGuard, TurnsAwayWhatItsPageWouldNotSend) {
    const struct {
        const char* what;
        RequestHead head;
        int status;
    } cases[] = {
        {"no secret", {"GET", "/api/folder", {{"Host", "127.0.0.1:4321"}}}, 404},
        {"half a secret", {"GET", "/0123456789abcdef/api/folder", {{"Host", "127.0.0.1:4321"}}}, 404},
        {"the secret without its slash", {"GET", "/" + kAddress.secret, {{"Host", "127.0.0.1:4321"}}}, 404},
        {"a name that was made to point here", with(question(), "Host", "rebound.example:4321"), 403},
        {"another port", with(question(), "Host", "127.0.0.1:80"), 403},
        {"no host", {"GET", question().path, {}}, 403},
        {"two hosts", {"GET", question().path, {{"Host", "127.0.0.1:4321"}, {"host", "other.example"}}}, 403},
        {"another page", with(question(), "Origin", "http://other.example"), 403},
        {"a page without an address", with(order(), "Origin", "null"), 403},
        {"another page, by the browser's word", with(question(), "Sec-Fetch-Site", "cross-site"), 403},
        {"the same machine's other port", with(order(), "Origin", "http://127.0.0.1:4322"), 403},
        {"an order from nowhere", with(with(order(), "Origin", ""), "Origin", "file://"), 403},
        {"another method", {"PUT", question().path, {{"Host", "127.0.0.1:4321"}}}, 405},
        {"a form", order("api/open", "application/x-www-form-urlencoded"), 415},
        {"pixels where words belong", order("api/open", "application/octet-stream"), 415},
        {"packed bodies", with(order(), "Content-Encoding", "gzip"), 415},
        {"no length", with(order(), "Transfer-Encoding", "chunked"), 411},
        {"a length that is none", order("api/open", "application/json", "-1"), 400},
        {"a length of two parts", order("api/open", "application/json", "1,2"), 400},
        {"too many words", order("api/open", "application/json", "5000000"), 413},
        {"too many pixels", order("api/upload", "application/octet-stream", "99999999999"), 413},
        {"a question with a body", with(question(), "Content-Length", "5"), 400},
        {"parts of an answer", with(question(), "Range", "bytes=0-1,0-1"), 416},
        {"an endless path", question(std::string(5000, 'a')), 414},
    };
    for (const auto& each : cases) EXPECT_EQ(statusOf(each.head), each.status) << each.what;
}

TEST(StudioGuard, MakesAnotherSecretEachTime) {
    EXPECT_EQ(makeSecret().size(), 32U);
    EXPECT_NE(makeSecret(), makeSecret());
}

void put(const std::filesystem::path& path) {
    std::ofstream(path) << "x";
}

int refusedStatus(const std::function<void()>& call) {
    try {
        call();
    } catch (const Refused& refused) {
        return refused.status();
    }
    return 200;
}

TEST(StudioFolder, LeadsToItsOwnFilesAlone) {
    const TemporaryFolder scratch;
    namespace fs = std::filesystem;
    fs::create_directories(scratch / "in/below");
    put(scratch / "out.jpg");
    put(scratch / "in/a.jpg");
    put(scratch / "in/B.PNG");
    put(scratch / "in/notes.txt");
    put(scratch / "in/.hidden.jpg");
    put(scratch / "in/below/deep.jpg");
    fs::create_symlink(scratch / "out.jpg", fs::path(scratch / "in/link.jpg"));
    fs::create_symlink("a.jpg", fs::path(scratch / "in/inner.jpg"));
    fs::create_directory_symlink(scratch.path(), fs::path(scratch / "in/door"));
    const Folder folder((scratch / "in"));
    EXPECT_THAT(folder.pictures(), ElementsAre("B.PNG", "a.jpg", "inner.jpg", "link.jpg"));
    EXPECT_EQ(refusedStatus([&] { folder.toRead("a.jpg"); }), 200);
    EXPECT_EQ(refusedStatus([&] { folder.toRead("inner.jpg"); }), 200);
    for (const char* name : {"../out.jpg", "/etc/passwd", "..", ".", "", ".hidden.jpg", "below/deep.jpg",
                             "a.jpg/..", "..\\out.jpg", "a\n.jpg", "below"})
        EXPECT_NE(refusedStatus([&] { folder.toRead(name); }), 200) << name;
    EXPECT_EQ(refusedStatus([&] { folder.toRead("link.jpg"); }), 403);
    EXPECT_EQ(refusedStatus([&] { folder.toRead(std::string("a.jpg\0.png", 10)); }), 400);

    EXPECT_EQ(folder.toWrite("new.png"), scratch.path() / "in/new.png");
    EXPECT_EQ(folder.toWrite("new.png", "made"), scratch.path() / "in/made/new.png");
    EXPECT_EQ(refusedStatus([&] { folder.toWrite("link.jpg"); }), 403);
    EXPECT_EQ(refusedStatus([&] { folder.toWrite("new.png", "door"); }), 403);
    EXPECT_EQ(refusedStatus([&] { folder.toWrite("new.png", "../elsewhere"); }), 400);
    EXPECT_FALSE(fs::exists(scratch / "elsewhere"));
    EXPECT_THROW(Folder((scratch / "nothing")), UsageError);
}

/// Work that shows when it has begun and runs until it is cancelled, or told to end.
struct LongWork {
    std::promise<void> begun;
    std::atomic<bool> end{false};

    void operator()(const WorkQueue::Job& job) {
        begun.set_value();
        while (!job.cancelled() && !end) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
};

std::future<bool> runAside(WorkQueue& queue, Lane lane, const WorkQueue::Work& work) {
    return std::async(std::launch::async, [&queue, lane, work] {
        try {
            queue.run(lane, work);
            return true;
        } catch (const Superseded&) {
            return false;
        }
    });
}

TEST(StudioWorkQueueThreads, NewerPreviewsTakeThePlaceOfOlderOnesAndSavingIsFinished) {
    WorkQueue queue;
    LongWork saving, region, preview;
    auto saved = runAside(queue, Lane::task, std::ref(saving));
    saving.begun.get_future().wait();
    auto part = runAside(queue, Lane::region, std::ref(region));
    while (queue.waiting() < 1) std::this_thread::yield();
    auto first = runAside(queue, Lane::preview, std::ref(preview));
    EXPECT_FALSE(part.get()) << "a part at full size was not left for the preview";
    saving.end = true;
    EXPECT_TRUE(saved.get()) << "saving gave way";
    preview.begun.get_future().wait();
    bool ran = false;
    queue.run(Lane::preview, [&](const WorkQueue::Job&) { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_FALSE(first.get()) << "an older preview was finished";
    EXPECT_THROW(queue.run(Lane::task, [](const WorkQueue::Job&) { throw Failure("no"); }), Failure);
}

TEST(StudioWorkQueueThreads, EndsWhatRunsAndWhatWaits) {
    WorkQueue queue;
    LongWork work;
    auto running = runAside(queue, Lane::batch, std::ref(work));
    work.begun.get_future().wait();
    auto waiting = runAside(queue, Lane::thumbnail, [](const WorkQueue::Job&) {});
    while (queue.waiting() < 1) std::this_thread::yield();
    queue.end();
    EXPECT_FALSE(running.get());
    EXPECT_FALSE(waiting.get());
    EXPECT_THROW(queue.run(Lane::preview, [](const WorkQueue::Job&) {}), Superseded);
}

/// The mean over each pixel's share of the source, straight from the definition.
unsigned char meanAt(const Image& image, int x, int y, int width, int height, int channel) {
    const double across = static_cast<double>(image.width) / width,
                 down = static_cast<double>(image.height) / height;
    double sum = 0, area = 0;
    for (int v = 0; v < image.height; ++v)
        for (int u = 0; u < image.width; ++u) {
            const double w =
                std::max(0.0, std::min(u + 1.0, (x + 1) * across) - std::max<double>(u, x * across));
            const double h = std::max(0.0, std::min(v + 1.0, (y + 1) * down) - std::max<double>(v, y * down));
            sum += w * h *
                   image.rgba[4 * static_cast<std::size_t>(v * image.width + u) +
                              static_cast<std::size_t>(channel)];
            area += w * h;
        }
    return static_cast<unsigned char>(sum / area + 0.5);
}

TEST(StudioPixels, ReducesToTheMeanOfWhatEachPixelCovers) {
    const Image image = testImage(23, 17, 5);
    const Image small = reduced(image, {0, 0, 23, 17}, 7, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 7; ++x)
            for (int c = 0; c < 3; ++c)
                ASSERT_NEAR(small.rgba[static_cast<std::size_t>(4 * (y * 7 + x) + c)],
                            meanAt(image, x, y, 7, 4, c), 1)
                    << x << ',' << y;
    const Image part = reduced(image, {3, 2, 5, 6}, 5, 6);
    EXPECT_EQ(part.rgba[4 * (2 * 5 + 1)], image.rgba[4 * (4 * 23 + 4)]) << "a part at its own size is a copy";
    Image clear = testImage(2, 1, 1);
    clear.rgba = {200, 0, 0, 255, 0, 255, 0, 0};
    EXPECT_THAT(reduced(clear, {0, 0, 2, 1}, 1, 1).rgba, ElementsAre(200, 0, 0, 128));
}

class StudioChain : public testing::Test {
protected:
    Image run(const char* json, ChainRun& chainRun) {
        const Chain chain = parseChain(Json::parse(json));
        reports.clear();
        Sources sources;
        sources.planes = &planes;
        sources.foundFaces = [] { return static_cast<const zel_faces*>(nullptr); };
        Image result;
        queue.run(Lane::task, [&](const WorkQueue::Job& job) {
            result = chainRun.run(original, chain, sources, job, reports);
        });
        return result;
    }
    static Image applied(Image image, const char* effect, const libzel::Values& values) {
        const zel_pixels pixels = pixelsOf(image);
        libzel::apply(library(), effect, pixels, values);
        return image;
    }

    WorkQueue queue;
    Planes planes;
    Image original = testImage(96, 64, 3);
    std::vector<StepReport> reports;
};

constexpr const char* kTwoSteps =
    R"({"steps": [{"effect": "nature-smooth", "values": {"radius": "4"}}, {"effect": "sharp", "values": {"amount": "1"}}]})";

TEST_F(StudioChain, GivesWhatTheEffectsGiveOneAfterTheOther) {
    const Image expected =
        applied(applied(original, "nature-smooth", {{"radius", "4"}}), "sharp", {{"amount", "1"}});
    for (const bool keeping : {false, true}) {
        ChainRun chainRun(1.0, keeping);
        EXPECT_EQ(run(kTwoSteps, chainRun).rgba, expected.rgba);
        // What was kept must not show in a shorter chain, an other one, or the same one again.
        EXPECT_EQ(
            run(R"({"steps": [{"effect": "nature-smooth", "values": {"radius": "4"}}]})", chainRun).rgba,
            applied(original, "nature-smooth", {{"radius", "4"}}).rgba);
        EXPECT_EQ(run(R"({"steps": [{"effect": "sharp", "values": {"amount": "1"}}]})", chainRun).rgba,
                  applied(original, "sharp", {{"amount", "1"}}).rgba);
        EXPECT_EQ(run(kTwoSteps, chainRun).rgba, expected.rgba);
        EXPECT_EQ(run(R"({"steps": []})", chainRun).rgba, original.rgba);
    }
}

TEST_F(StudioChain, BlendsSwitchesOffWaitsAndGoesOnAfterAFailure) {
    ChainRun chainRun(1.0, true);
    EXPECT_EQ(run(R"({"steps": [{"effect": "gauss-blur", "off": true}]})", chainRun).rgba, original.rgba);
    EXPECT_EQ(reports[0].state, "off");
    EXPECT_EQ(run(R"({"steps": [{"effect": "inpaint"}, {"effect": "slim-face"}]})", chainRun).rgba,
              original.rgba);
    EXPECT_EQ(reports[0].why, "mask");
    EXPECT_EQ(reports[1].why, "startX");
    EXPECT_EQ(run(R"({"steps": [{"effect": "auto-zoom-eye"}]})", chainRun).rgba, original.rgba);
    EXPECT_EQ(reports[0].state, "failed");
    const Image whole = run(R"({"steps": [{"effect": "gauss-blur"}]})", chainRun);
    const Image half = run(R"({"steps": [{"effect": "gauss-blur", "strength": 0.5}]})", chainRun);
    for (std::size_t i = 0; i < half.rgba.size(); ++i)
        ASSERT_NEAR(half.rgba[i], (whole.rgba[i] + original.rgba[i]) / 2.0, 0.51);
}

TEST_F(StudioChain, ScalesLengthsInPixelsForTheSmallerCopy) {
    ChainRun half(0.5, true);
    EXPECT_EQ(run(R"({"steps": [{"effect": "gauss-blur", "values": {"radius": "12"}}]})", half).rgba,
              applied(original, "gauss-blur", {{"radius", "6"}}).rgba);
    EXPECT_EQ(run(R"({"steps": [{"effect": "gauss-blur"}]})", half).rgba,
              applied(original, "gauss-blur", {{"radius", "4"}}).rgba);
}

TEST_F(StudioChain, TakesMasksAndTellsWhereOneIsGone) {
    ChainRun chainRun(1.0, true);
    std::string samples(96 * 64, '\0');
    for (int y = 20; y < 30; ++y) samples.replace(static_cast<std::size_t>(y * 96 + 30), 20, 20, '\xFF');
    const std::string name = planes.keep(96, 64, samples);
    const std::string json = R"({"steps": [{"effect": "inpaint", "mask": ")" + name + R"("}]})";
    const Image filled = run(json.c_str(), chainRun);
    EXPECT_EQ(reports[0].state, "done") << reports[0].why;
    EXPECT_NE(filled.rgba, original.rgba);
    EXPECT_EQ(filled.rgba[4 * (10 * 96 + 10)], original.rgba[4 * (10 * 96 + 10)]);
    EXPECT_EQ(refusedStatus([&] { run(R"({"steps": [{"effect": "inpaint", "mask": "gone"}]})", chainRun); }),
              410);
    EXPECT_EQ(refusedStatus([&] { planes.keep(95, 64, samples); }), 400);
}

TEST_F(StudioChain, RefusesWhatIsNoChain) {
    for (const char* json :
         {R"({})", R"({"steps": {}})", R"({"steps": [3]})", R"({"steps": [{"effect": "nothing"}]})",
          R"({"steps": [{"effect": "sharp", "values": {"amount": 1}}]})",
          R"({"steps": [{"effect": "sharp", "values": {"size": "1"}}]})",
          R"({"steps": [{"effect": "sharp", "strength": 2}]})",
          R"({"steps": [{"effect": "sharp", "off": 0}]})"})
        EXPECT_EQ(refusedStatus([&] { parseChain(Json::parse(json)); }), 400) << json;
}

TEST_F(StudioChain, LeavesOutWhatBelongsToOnePictureForOthers) {
    std::vector<std::string> left;
    const Chain chain = chainForAnyPicture(parseChain(Json::parse(R"({"faces": {"faces": []}, "steps": [
            {"effect": "slim-face", "values": {"startX": "0", "startY": "0", "endX": "1", "endY": "1"}},
            {"effect": "defocus", "values": {"focus": "0.5,0.5", "blurLevel": "20"}, "depth": "d", "mask": "m"}]})")),
                                           left);
    ASSERT_EQ(chain.steps.size(), 1U);
    EXPECT_THAT(left, ElementsAre("Slimming brush"));
    EXPECT_THAT(chain.steps[0].values, ElementsAre(std::pair<std::string, std::string>{"blurLevel", "20"}));
    EXPECT_EQ(chain.steps[0].mask + chain.steps[0].depth + chain.faces, "");
}

}  // namespace
}  // namespace zelcli::studio
