#include "cli/studio/batch.h"

#include <filesystem>
#include <new>
#include <utility>

#include "cli/failure.h"
#include "cli/studio/openPicture.h"
#include "cli/studio/pictureFiles.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

std::string outputName(const std::string& name) {
    return canSave(name) ? name : fs::path(name).stem().string() + ".png";
}

}  // namespace

Batch::~Batch() {
    cancel();
}

void Batch::start(const Chain& chain, const std::vector<std::string>& names, const std::string& below,
                  bool replacing) {
    const std::lock_guard lock(m_mutex);
    if (m_state.running) throw Refused(409, "a batch is running");
    if (names.empty()) throw Refused(400, "there are no pictures to work on");
    if (below.empty()) throw Refused(400, "the results need a folder of their own");
    State state;
    m_chain = chainForAnyPicture(chain, state.left);
    if (m_chain.steps.empty()) throw Refused(400, "no step of the chain can be used on other pictures");
    state.running = true;
    state.total = names.size();
    state.below = below;
    m_state = std::move(state);
    m_thread =
        std::jthread([this, names, replacing](const std::stop_token& stop) { work(stop, names, replacing); });
}

void Batch::cancel() {
    const std::lock_guard lock(m_mutex);
    m_thread.request_stop();
}

Json Batch::state() {
    const std::lock_guard lock(m_mutex);
    Json faults = Json::array();
    for (const Fault& fault : m_state.faults) faults.push_back({{"name", fault.name}, {"why", fault.why}});
    return {{"running", m_state.running}, {"total", m_state.total},
            {"done", m_state.done},       {"skipped", m_state.skipped},
            {"current", m_state.current}, {"folder", m_state.below},
            {"left", m_state.left},       {"faults", faults}};
}

void Batch::work(const std::stop_token& stop, const std::vector<std::string>& names, bool replacing) {
    for (const std::string& name : names) {
        if (stop.stop_requested()) break;
        {
            const std::lock_guard lock(m_mutex);
            m_state.current = name;
        }
        try {
            process(name, replacing);
        } catch (const Superseded&) {
            break;
        } catch (const std::bad_alloc&) {
            const std::lock_guard lock(m_mutex);
            m_state.faults.push_back({name, "there is not enough memory for it"});
        } catch (const std::exception& problem) {
            const std::lock_guard lock(m_mutex);
            m_state.faults.push_back({name, problem.what()});
        }
    }
    const std::lock_guard lock(m_mutex);
    m_state.running = false;
    m_state.current.clear();
}

void Batch::process(const std::string& name, bool replacing) {
    const fs::path target = m_folder.toWrite(outputName(name), m_state.below);
    std::error_code error;
    if (!replacing && fs::exists(target, error)) {
        const std::lock_guard lock(m_mutex);
        ++m_state.skipped;
        return;
    }
    m_queue.run(Lane::batch, [&](const WorkQueue::Job& job) {
        job.tell("reading", 0);
        OpenPicture picture(0, name, pictureFromFile(m_folder.toRead(name)), ZEL_LONGEST_SIDE);
        Sources sources;
        sources.planes = &m_planes;
        sources.foundFaces = [&] { return picture.faces(); };
        sources.second = [&](const std::string& other) {
            return pictureFromFile(m_folder.toRead(other)).image;
        };
        sources.file = [&](const std::string& file) { return m_folder.toRead(file).string(); };
        std::vector<StepReport> reports;
        const Image& result = picture.result(m_chain, sources, job, reports);
        for (const StepReport& report : reports)
            if (report.state == "failed") throw Failure(report.why);
        savePicture(target, result);
    });
    const std::lock_guard lock(m_mutex);
    ++m_state.done;
}

}  // namespace zelcli::studio
