#include "cli/commands/applyCommand.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <optional>

#include "cli/commands/applyPicture.h"
#include "cli/files/facesFile.h"
#include "cli/files/writePicture.h"
#include "cli/run/jobs.h"
#include "cli/run/namingFile.h"
#include "platform/interruption.h"
#include "platform/utf8Path.h"

namespace zelcli {

namespace {

using Clock = std::chrono::steady_clock;
using zellab::platform::Interruption;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// One run of the command: what all inputs share.
class ApplyRun {
public:
    ApplyRun(const ApplyOptions& options, std::vector<ChainStep> chain, const JobShare& share)
        : m_options(options), m_chain(std::move(chain)), m_share(share), m_messages(options.quiet) {}

    int run(const ApplyPlan& plan);

private:
    void prepare(const ApplyPlan& plan);
    void process(const PictureWork& work, std::size_t index, const ApplyItem& item);
    void tell(std::size_t index, const ApplyItem& item, const Outcome& outcome);
    bool finish(const ApplyPlan& plan, double seconds);

    const ApplyOptions& m_options;
    std::vector<ChainStep> m_chain;
    const JobShare m_share;
    Messages m_messages;
    std::optional<LibraryVoice> m_voice;
    libzel::Faces m_faces;  // of --faces FILE
    std::vector<Outcome> m_outcomes;
};

int ApplyRun::run(const ApplyPlan& plan) {
    const auto start = Clock::now();
    const Interruption interruption;
    try {
        m_voice.emplace(m_messages, m_options.verbose, m_options.assets, m_share.threads);
        prepare(plan);
    } catch (const FileFailure& failure) {
        m_messages.error(failure.file(), failure.what());
        return kWorkFailed;
    }
    for (const ChainStep& step : m_chain)
        if (!step.caution.empty()) m_messages.note("", step.caution);
    for (const auto& [folder, why] : plan.failures) m_messages.error(folder, why);
    m_outcomes.resize(plan.items.size());
    const PictureWork work(m_options, m_chain, m_faces.get(), m_messages);
    m_messages.startProgress(plan.items.size());
    runJobs(plan.items.size(), m_share.jobs, [&](std::size_t i) { process(work, i, plan.items[i]); });
    m_messages.endProgress();
    const bool done = finish(plan, secondsSince(start));
    Interruption::finish();
    return done ? kDone : kWorkFailed;
}

/// What can fail for all inputs at once: shared pictures, faces, assets, folders.
void ApplyRun::prepare(const ApplyPlan& plan) {
    prepareChain(m_chain, m_options);
    std::error_code none;
    if (!m_options.faces.empty() &&
        !std::filesystem::is_directory(zellab::platform::utf8Path(m_options.faces), none))
        m_faces = namingFile(m_options.faces, [&] { return readFaces(UserPath(m_options.faces).real); });
    for (const UserPath& folder : plan.folders) {
        std::error_code error;
        std::filesystem::create_directories(folder.real, error);
        if (error) throw FileFailure(folder.shown, "cannot be made (" + error.message() + ")");
    }
}

void ApplyRun::process(const PictureWork& work, std::size_t index, const ApplyItem& item) {
    Outcome& outcome = m_outcomes[index];
    outcome.input = item.input.shown;
    outcome.output = item.output.shown;
    if (Interruption::asked()) return;
    const auto start = Clock::now();
    m_voice->enter(item.input.shown);
    try {
        namingFile(item.input.shown, [&] { work.run(index, item, outcome); });
    } catch (const FileFailure& failure) {
        outcome.state = Outcome::State::failed;
        outcome.why = failure.what();
        m_messages.error(failure.file(), failure.what());
    } catch (const PictureWork::Interrupted&) {
        outcome.state = Outcome::State::notBegun;
    }
    m_voice->leave(item.input.shown);
    outcome.seconds = secondsSince(start);
    tell(index, item, outcome);
}

void ApplyRun::tell(std::size_t index, const ApplyItem& item, const Outcome& outcome) {
    if (outcome.state == Outcome::State::notBegun) return;
    char time[32];
    std::snprintf(time, sizeof time, " (%.1f s)", outcome.seconds);
    const bool skipped = outcome.state == Outcome::State::skipped;
    m_messages.finished(index,
                        skipped ? item.input.shown + " skipped: " + outcome.why
                                : item.input.shown + " -> " + item.output.shown + time,
                        outcome.state == Outcome::State::failed);
}

/// Tells what was done, where more than one picture was at stake; false where something failed.
bool ApplyRun::finish(const ApplyPlan& plan, double seconds) {
    bool done = !Interruption::asked();
    for (const auto& [folder, why] : plan.failures) {
        Outcome& outcome = m_outcomes.emplace_back();
        outcome.state = Outcome::State::failed;
        outcome.input = folder;
        outcome.why = why;
    }
    for (const Outcome& outcome : m_outcomes) done = done && outcome.state != Outcome::State::failed;
    if (m_outcomes.size() > 1 || Interruption::asked())
        m_messages.closing(closingLine(m_outcomes, seconds, Interruption::asked()));
    if (m_options.report.empty()) return done;
    try {
        namingFile(m_options.report, [&] {
            const std::string report = reportJson(m_outcomes, seconds, Interruption::asked());
            writeText(UserPath(m_options.report).real, report);
        });
    } catch (const FileFailure& failure) {
        m_messages.error(failure.file(), failure.what());
        return false;
    }
    return done;
}

void checkFace(const std::string& face) {
    const bool number = !face.empty() && face.size() < 5 && face[0] != '0' &&
                        std::all_of(face.begin(), face.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (face != "all" && face != "largest" && !number)
        throw UsageError("--face is all, largest, or a number from 1 on, not '" + face + "'");
}

}  // namespace

int runApply(ApplyOptions options) {
    try {
        resolveRecipe(options);
        checkFace(options.face);
        std::vector<ChainStep> chain = makeChain(options);
        const ApplyPlan plan = planApply(options);
        saveRecipe(options);
        return ApplyRun(options, std::move(chain), shareJobs(options.jobs, plan.items.size())).run(plan);
    } catch (const FileFailure& failure) {
        Messages(options.quiet).error(failure.file(), failure.what());
        return kWorkFailed;
    }
}

}  // namespace zelcli
