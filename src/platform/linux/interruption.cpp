#include "platform/interruption.h"

#include <array>
#include <atomic>
#include <csignal>

namespace zellab::platform {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> g_signal{0};
struct sigaction g_before[kSignals.size()];

/// Calls nothing but what a signal handler may call.
void note(int signal) {
    g_signal = signal;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_before[i], nullptr);
}

}  // namespace

Interruption::Interruption() {
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = static_cast<int>(SA_RESTART);
    sigemptyset(&action.sa_mask);
    g_signal = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], nullptr, &g_before[i]);
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        if (g_before[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
}

Interruption::~Interruption() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_before[i], nullptr);
}

bool Interruption::asked() {
    return g_signal != 0;
}

void Interruption::finish() {
    const int signal = g_signal;
    if (signal == 0) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_before[i], nullptr);
    raise(signal);
}

}  // namespace zellab::platform
