#include "cli/studio/studioCommand.h"

#include <csignal>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>
#include <utility>

#include "cli/commands/applyCommand.h"
#include "cli/library.h"
#include "cli/run/messages.h"
#include "cli/studio/browser.h"
#include "cli/studio/httpDoor.h"

namespace zelcli {

namespace {

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    return signals;
}

/// Threads are born with what is blocked where they are made: none of the studio's may be the one that a signal
/// ends in the middle of a file.
void blockEndingSignals() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

/// Waits for one of the signals by which users end programs, and ends the studio in good order.
class EndOnSignal {
public:
    explicit EndOnSignal(std::function<void()> end)
        : m_waiting([end = std::move(end)] {
              const sigset_t signals = endingSignals();
              int signal = 0;
              sigwait(&signals, &signal);
              end();
          }) {}
    ~EndOnSignal() {
        pthread_kill(m_waiting.native_handle(), SIGINT);  // one that it waits for
        m_waiting.join();
    }
    EndOnSignal(const EndOnSignal&) = delete;
    EndOnSignal& operator=(const EndOnSignal&) = delete;

private:
    std::thread m_waiting;
};

}  // namespace

int runStudio(const StudioOptions& options) {
    const studio::Folder folder(options.folder);
    Messages messages(false);
    blockEndingSignals();  // before the first thread is made
    LibraryVoice voice(messages, options.verbose, options.assets);
    studio::Studio studio(folder);
    studio::HttpDoor door(studio);
    const std::string address = studio::pageAddress(door.address());
    std::cout << address << std::endl;
    std::optional<studio::Browser> browser;
    if (!options.noBrowser) browser.emplace(address);
    const bool opened = browser && browser->started();
    messages.note(
        "", std::string(opened ? "the studio is open in your browser" : "open this address in a browser") +
                "; it ends with Ctrl-C");
    const EndOnSignal ending([&] {
        studio.end();
        door.close();
    });
    door.serve();
    return 0;
}

}  // namespace zelcli
