// Every call of both libraries with its first, second, third... allocation failing, and each of its threads that
// cannot be started. A call may throw std::bad_alloc or give its status, or go on without; nothing may leak, the C
// interface leaves the caller's memory as it was, and a process may die only where a library beneath asked for the
// memory: those end it themselves.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <stdexcept>

#include "attempts.h"
#include "failingCalls.h"
#include "frame/processorCount.h"
#include "longChecks.h"

namespace zeltest {

namespace {

constexpr int kWidth = 96, kHeight = 128, kWorkers = 3;
constexpr int kStuckSeconds = 120;

/// What the process that tries tells the one that watches it.
struct Tally {
    long at, asked, step;  // the failure at work; all there are; every so many are tried
    long tried, refused, wentOn, halfDone, leaks;
    bool isDone;
    char failedIn[64], fault[128];  // what must not be; empty: nothing
};

/// Whose code asked for what failed. Libraries beneath may lose memory, or end the process, where they have none.
bool isOfThisLibrary(const char* file) {
    return !*file || !std::strcmp(file, program_invocation_short_name) || !std::strncmp(file, "libzel", 6);
}

void tellFault(Tally& tally, const char* what) {
    if (!*tally.fault) std::snprintf(tally.fault, sizeof tally.fault, "%s at failure %ld", what, tally.at);
}

/// Blocks that one failing call leaves behind. Threads' own memory comes and goes: only what does so thrice is a leak.
template <typename Try>
long leftBy(const Try& once) {
    long least = once();
    for (int again = 0; again < 2 && least > 0; ++again) least = std::min(least, once());
    return least;
}

void judge(const Deed& deed, Attempt& attempt, bool isDone, const Bytes& good, Tally& tally) {
    const bool isUntouched = attempt.isUntouched();
    if (!attempt.isIntact()) tellFault(tally, "bytes beside a buffer changed");
    if (isDone && !isUntouched && attempt.written() != good)
        tellFault(tally, "told as done with other bytes");
    if (isDone || isUntouched) return;
    ++tally.halfDone;
    if (deed.isOfInterface) tellFault(tally, "a failed call changed the caller's memory");
}

void tryOnce(const Deed& deed, Supply supply, const Bytes& good, Tally& tally) {
    tally.failedIn[0] = 0;
    bool hasCome = true, isDone = false;
    const long left = leftBy([&] {
        const long before = liveBlocks();
        isDone = false;
        {
            const std::unique_ptr<Attempt> attempt = deed.prepare(kWidth, kHeight);
            startCounting(supply, tally.at);
            try {
                isDone = attempt->run();
                endCounting();
            } catch (const std::bad_alloc&) {
                endCounting();
                if (deed.isOfInterface) tellFault(tally, "an exception crossed the C interface");
            } catch (const std::exception& other) {
                endCounting();
                tellFault(tally, other.what());
            }
            hasCome = hasFailed();
            judge(deed, *attempt, isDone, good, tally);
        }
        return liveBlocks() - before;
    });
    if (!hasCome) {
        tally.isDone = true;
        return;
    }
    ++tally.tried;
    ++(isDone ? tally.wentOn : tally.refused);
    if (left > 0 && !deed.endsBeneath && isOfThisLibrary(tally.failedIn))
        tellFault(tally, "blocks were left");
    if (left > 0) ++tally.leaks;
}

/// In a process of its own: goes on at tally.at until all failures were tried.
void tryAll(const Deed& deed, Supply supply, double seconds, Tally& tally) {
    const zellab::WorkerCount workers(kWorkers);
    Bytes good;
    double took = 0;
    for (int warmUp = 0; warmUp < 3; ++warmUp) {
        const std::unique_ptr<Attempt> attempt = deed.prepare(kWidth, kHeight);
        const auto begin = std::chrono::steady_clock::now();
        startCounting(supply, -1);
        attempt->run();
        tally.asked = endCounting();
        took = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        good = attempt->written();
    }
    if (tally.step == 0)
        tally.step = 1 + static_cast<long>(static_cast<double>(tally.asked) * took / seconds);
    for (; tally.at < tally.asked && !tally.isDone; tally.at += tally.step) {
        alarm(kStuckSeconds);
        tryOnce(deed, supply, good, tally);
    }
    tally.isDone = true;
}

/// Whether all went as it must.
bool check(const Deed& deed, Supply supply, double seconds, long first) {
    void* const shared =
        mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    Tally& tally = *new (shared) Tally{};
    tally.at = first;
    std::map<std::string, long> deaths;
    while (!tally.isDone) {
        const pid_t child = fork();
        if (child == 0) {
            showFailurePlace(tally.failedIn, sizeof tally.failedIn);
            tryAll(deed, supply, seconds, tally);
            _exit(0);
        }
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child) break;
        if (tally.isDone) break;
        const bool isStuck = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
        if (isStuck || (!deed.endsBeneath && isOfThisLibrary(tally.failedIn)))
            tellFault(tally, isStuck ? "stuck" : "died");
        ++deaths[*tally.failedIn ? tally.failedIn : "?"];
        ++tally.tried;
        tally.at += std::max(tally.step, 1L);
        tally.failedIn[0] = 0;
    }
    std::fprintf(report(), "%-30s %-7s %5ld of %5ld: %ld refused, %ld went on", deed.name.c_str(),
                 supply == Supply::memory ? "memory" : "threads", tally.tried, tally.asked, tally.refused,
                 tally.wentOn);
    if (tally.halfDone > 0) std::fprintf(report(), ", %ld half done", tally.halfDone);
    for (const auto& [file, count] : deaths) std::fprintf(report(), ", %ld ended by %s", count, file.c_str());
    if (tally.leaks > 0) std::fprintf(report(), ", %ld lost memory", tally.leaks);
    const bool isSound = !*tally.fault;
    if (!isSound) std::fprintf(report(), "; FAULT: %s", tally.fault);
    std::fprintf(report(), "\n");
    std::fflush(report());
    munmap(shared, sizeof(Tally));
    return isSound;
}

}  // namespace

bool checkFaults(zel_context* context, double seconds, const std::string& name, long first) {
    bool isSound = true;
    for (const auto& list : {pictureDeeds(context), otherDeeds(context)})
        for (const Deed& deed : list)
            for (const Supply supply : {Supply::memory, Supply::threads})
                if (name.empty() || deed.name == name)
                    isSound = check(deed, supply, seconds, first) && isSound;
    return isSound;
}

}  // namespace zeltest
