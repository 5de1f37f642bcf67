// Sixty-four threads with a thousand mixed calls give the bytes of the same calls in turn.
#include <atomic>
#include <cstdio>
#include <thread>

#include "attempts.h"
#include "longChecks.h"

namespace zeltest {

namespace {

constexpr int kThreads = 64, kCalls = 1000;
/// So small that defocus, which works at a size of its own, does not take all the time.
constexpr std::pair<int, int> kSizes[] = {{64, 96}, {33, 61}, {120, 80}};

Bytes after(const Deed& deed, std::size_t call) {
    const auto& [width, height] = kSizes[call % std::size(kSizes)];
    const std::unique_ptr<Attempt> attempt = deed.prepare(width, height);
    attempt->run();
    return attempt->isIntact() ? attempt->written() : Bytes();
}

}  // namespace

bool checkThreads(zel_context* context, const std::string& name) {
    std::vector<Deed> deeds;
    for (const Deed& deed : pictureDeeds(context))
        if (name.empty() || deed.name == name) deeds.push_back(deed);
    // The calls of the threads come first, so that what is made at first use is made by many at once.
    std::vector<Bytes> atOnce(kCalls);
    std::atomic<std::size_t> next{0};
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&] {
                for (std::size_t call = next++; call < kCalls; call = next++)
                    atOnce[call] = after(deeds[call % deeds.size()], call);
            });
    }
    std::vector<std::vector<Bytes>> inTurn(deeds.size(), std::vector<Bytes>(std::size(kSizes)));
    int others = 0, compared = 0;
    for (std::size_t call = 0; call < kCalls; ++call) {
        const Deed& deed = deeds[call % deeds.size()];
        if (deed.drawsOnRand) continue;
        Bytes& expected = inTurn[call % deeds.size()][call % std::size(kSizes)];
        if (expected.empty()) expected = after(deed, call);
        ++compared;
        if (!expected.empty() && atOnce[call] == expected) continue;
        ++others;
        std::fprintf(report(), "%-30s FAULT: call %zu gave other bytes\n", deed.name.c_str(), call);
    }
    std::fprintf(report(), "%d threads, %d calls of %zu kinds: %d compared, %d differ\n", kThreads, kCalls,
                 deeds.size(), compared, others);
    return others == 0;
}

}  // namespace zeltest
