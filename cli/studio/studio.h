#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "cli/studio/batch.h"
#include "cli/studio/folder.h"
#include "cli/studio/message.h"
#include "cli/studio/openPicture.h"
#include "cli/studio/planes.h"
#include "cli/studio/workQueue.h"

namespace zelcli::studio {

/// What the page can ask for, whoever carries its requests. Any number of threads may ask at once.
class Studio {
public:
    explicit Studio(Folder folder) : m_folder(std::move(folder)), m_batch(m_folder, m_queue, m_planes) {}

    /// Never throws: what goes wrong becomes a status and {"error": WHY}. A request whose place a newer one took is
    /// answered by 204 and nothing.
    Answer answer(const Request& request);

    /// Requests at work are answered soon, later ones at once.
    void end();

private:
    using Handler = Answer (Studio::*)(const Request&);
    static const std::map<std::string, Handler>& handlers();
    Answer routed(const Request& request);

    Answer effects(const Request&);
    Answer folder(const Request&);
    Answer thumbnail(const Request&);
    Answer upload(const Request&);
    Answer open(const Request&);
    Answer before(const Request&);
    Answer faces(const Request&);
    Answer faceTemplate(const Request&);
    Answer plane(const Request&);
    Answer depth(const Request&);
    Answer preview(const Request&);
    Answer region(const Request&);
    Answer save(const Request&);
    Answer progress(const Request&);
    Answer recipe(const Request&);
    Answer recipeKeep(const Request&);
    Answer batchStart(const Request&);
    Answer batchState(const Request&);
    Answer batchCancel(const Request&);

    LoadedPicture read(const std::string& name);
    OpenPicture& opened(int id);
    Sources sourcesFor(OpenPicture& picture);
    Answer onWorker(Lane lane, const std::function<Answer(const WorkQueue::Job&)>& work);

    const Folder m_folder;
    Planes m_planes;
    WorkQueue m_queue;
    Batch m_batch;
    std::unique_ptr<OpenPicture> m_open;  // the worker's
    int m_lastId = 0;                     // likewise
    std::mutex m_mutex;
    std::map<std::string, std::string> m_dropped;     // files that came by the page, by name
    std::map<std::string, std::string> m_thumbnails;  // by name
};

}  // namespace zelcli::studio
