#include "cli/studio/studio.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/library.h"
#include "cli/studio/pixels.h"
#include "cli/studio/recipes.h"
#include "cli/studio/registry.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

constexpr int kThumbnailSide = 240;
/// Files that were dropped on the page stay in memory: so many bytes of them.
constexpr std::size_t kMostDropped = std::size_t{1} << 30;
/// Sides of the copy that previews work on.
constexpr int kSmallestScreen = 256, kLargestScreen = 4096;

Answer failure(int status, const std::string& why) {
    Answer answer = jsonAnswer({{"error", why}});
    answer.status = status;
    return answer;
}

std::string queryText(const Request& request, const char* name) {
    const auto found = request.query.find(name);
    if (found == request.query.end()) throw Refused(400, std::string("the address lacks '") + name + "'");
    return found->second;
}

int queryNumber(const Request& request, const char* name, int minimum, int maximum) {
    const std::string text = queryText(request, name);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < minimum || number > maximum)
        throw Refused(400, std::string("'") + name + "' is out of range");
    return number;
}

std::string_view bytesOf(const std::vector<unsigned char>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Json stepsJson(const std::vector<StepReport>& reports) {
    Json steps = Json::array();
    for (const StepReport& report : reports)
        steps.push_back({{"state", report.state}, {"why", report.why}, {"seconds", report.seconds}});
    return steps;
}

Answer pictureAnswer(const Image& image, const std::vector<StepReport>& reports = {}) {
    return pixelAnswer({{"width", image.width}, {"height", image.height}, {"steps", stepsJson(reports)}},
                       bytesOf(image.rgba));
}

std::vector<std::string> names(const Json& list) {
    if (!list.is_array()) throw Refused(400, "the request has no list of names");
    std::vector<std::string> texts;
    for (const Json& name : list) {
        if (!name.is_string()) throw Refused(400, "a name is no text");
        texts.push_back(name.get<std::string>());
    }
    return texts;
}

const Json& member(const Json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end()) throw Refused(400, std::string("the request lacks '") + name + "'");
    return *found;
}

bool flag(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_boolean() && found->get<bool>();
}

}  // namespace

const std::map<std::string, Studio::Handler>& Studio::handlers() {
    static const std::map<std::string, Handler> table = {{"GET api/effects", &Studio::effects},
                                                         {"GET api/folder", &Studio::folder},
                                                         {"GET api/thumbnail", &Studio::thumbnail},
                                                         {"POST api/upload", &Studio::upload},
                                                         {"POST api/open", &Studio::open},
                                                         {"GET api/before", &Studio::before},
                                                         {"GET api/faces", &Studio::faces},
                                                         {"GET api/template", &Studio::faceTemplate},
                                                         {"POST api/plane", &Studio::plane},
                                                         {"GET api/depth", &Studio::depth},
                                                         {"POST api/preview", &Studio::preview},
                                                         {"POST api/region", &Studio::region},
                                                         {"POST api/save", &Studio::save},
                                                         {"GET api/progress", &Studio::progress},
                                                         {"GET api/recipe", &Studio::recipe},
                                                         {"POST api/recipe", &Studio::recipeKeep},
                                                         {"POST api/batch", &Studio::batchStart},
                                                         {"GET api/batch", &Studio::batchState},
                                                         {"POST api/batch/cancel", &Studio::batchCancel}};
    return table;
}

Answer Studio::answer(const Request& request) {
    try {
        return routed(request);
    } catch (const Superseded&) {
        return {204, "application/json", {}};
    } catch (const Refused& refused) {
        return failure(refused.status(), refused.what());
    } catch (const std::bad_alloc&) {
        return failure(507, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        return failure(422, problem.what());
    }
}

Answer Studio::routed(const Request& request) {
    const auto handler = handlers().find(request.method + " " + request.path);
    if (handler == handlers().end()) throw Refused(404, "there is nothing here");
    return (this->*handler->second)(request);
}

void Studio::end() {
    m_batch.cancel();
    m_queue.end();
}

Answer Studio::onWorker(Lane lane, const std::function<Answer(const WorkQueue::Job&)>& work) {
    Answer answer;
    m_queue.run(lane, [&](const WorkQueue::Job& job) { answer = work(job); });
    return answer;
}

LoadedPicture Studio::read(const std::string& name) {
    std::string dropped;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_dropped.find(name);
        if (found != m_dropped.end()) dropped = found->second;
    }
    return dropped.empty() ? pictureFromFile(m_folder.toRead(name)) : pictureFromBytes(dropped);
}

OpenPicture& Studio::opened(int id) {
    if (!m_open || m_open->id() != id) throw Refused(409, "another picture is open");
    return *m_open;
}

Sources Studio::sourcesFor(OpenPicture& picture) {
    Sources sources;
    sources.planes = &m_planes;
    sources.foundFaces = [&picture] { return picture.faces(); };
    sources.second = [this](const std::string& name) { return read(name).image; };
    sources.file = [this](const std::string& name) { return m_folder.toRead(name).string(); };
    return sources;
}

Answer Studio::effects(const Request&) {
    return jsonAnswer(registryJson());
}

Answer Studio::folder(const Request&) {
    std::vector<std::string> dropped;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [name, bytes] : m_dropped) dropped.push_back(name);
    }
    return jsonAnswer({{"name", m_folder.name()},
                       {"pictures", m_folder.pictures()},
                       {"dropped", dropped},
                       {"lookups", m_folder.lookups()},
                       {"recipes", recipesIn(m_folder)}});
}

Answer Studio::thumbnail(const Request& request) {
    const std::string name = queryText(request, "name");
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_thumbnails.find(name);
        if (found != m_thumbnails.end()) return {200, "image/jpeg", found->second};
    }
    return onWorker(Lane::thumbnail, [&](const WorkQueue::Job&) -> Answer {
        const std::string jpeg = thumbnailOf(read(name).image, kThumbnailSide);
        const std::lock_guard lock(m_mutex);
        m_thumbnails[name] = jpeg;
        return {200, "image/jpeg", jpeg};
    });
}

Answer Studio::upload(const Request& request) {
    const std::string name = queryText(request, "name");
    if (request.body.empty()) throw Refused(400, "the file is empty");
    m_folder.toWrite(name);  // names that no file may have are refused here
    const std::lock_guard lock(m_mutex);
    std::size_t held = request.body.size();
    for (const auto& [other, bytes] : m_dropped) held += other == name ? 0 : bytes.size();
    if (held > kMostDropped) throw Refused(413, "too many files were dropped; put them into the folder");
    m_dropped[name] = request.body;
    m_thumbnails.erase(name);
    return jsonAnswer({{"name", name}});
}

Answer Studio::open(const Request& request) {
    const Json json = objectOf(request.body);
    const std::string name = textMember(json, "name");
    const int side = numberMember(json, "side", kSmallestScreen, kLargestScreen);
    return onWorker(Lane::task, [&](const WorkQueue::Job& job) {
        job.tell("reading", 0);
        m_open.reset();  // two large pictures need not stand beside each other
        m_open = std::make_unique<OpenPicture>(++m_lastId, name, read(name), side);
        const Image& whole = m_open->whole();
        const Image& screen = m_open->screen();
        {
            const std::lock_guard lock(m_mutex);
            if (!m_thumbnails.contains(name)) m_thumbnails[name] = thumbnailOf(screen, kThumbnailSide);
        }
        return jsonAnswer({{"id", m_open->id()},
                           {"name", name},
                           {"width", whole.width},
                           {"height", whole.height},
                           {"screen", {{"width", screen.width}, {"height", screen.height}}},
                           {"notes", m_open->notes()}});
    });
}

Answer Studio::before(const Request& request) {
    const int id = queryNumber(request, "id", 0, 1 << 30);
    return onWorker(Lane::task, [&](const WorkQueue::Job&) { return pictureAnswer(opened(id).screen()); });
}

Answer Studio::faces(const Request& request) {
    const int id = queryNumber(request, "id", 0, 1 << 30);
    return onWorker(Lane::task, [&](const WorkQueue::Job& job) {
        job.tell("finding faces", 0);
        OpenPicture& picture = opened(id);
        zel_faces* const found = picture.facesForText();
        if (!found) return jsonAnswer({{"faces", nullptr}, {"why", picture.whyNoFaces()}});
        return jsonAnswer({{"faces", Json::parse(libzel::toJson(found))}});
    });
}

/// The face of a drawn portrait that looks straight ahead: what is laid over a face that was not found.
Answer Studio::faceTemplate(const Request&) {
    return onWorker(Lane::task, [&](const WorkQueue::Job&) {
        constexpr int kWidth = 300, kHeight = 400;
        const auto portrait = libzel::made<libzel::Portrait>([&](zel_portrait** out) {
            return zel_draw_portrait(library(), kWidth, kHeight, 1, nullptr, 0, out);
        });
        const auto faces = libzel::made<libzel::Faces>(
            [&](zel_faces** out) { return zel_portrait_faces(portrait.get(), out); });
        return jsonAnswer(Json::parse(libzel::toJson(faces.get())));
    });
}

Answer Studio::plane(const Request& request) {
    const int width = queryNumber(request, "width", 1, kLargestScreen);
    const int height = queryNumber(request, "height", 1, kLargestScreen);
    return jsonAnswer({{"plane", m_planes.keep(width, height, request.body)}});
}

Answer Studio::depth(const Request& request) {
    const int id = queryNumber(request, "id", 0, 1 << 30);
    return onWorker(Lane::task, [&](const WorkQueue::Job& job) {
        const Mask& depth = opened(id).depth(job);
        return pixelAnswer({{"width", depth.width}, {"height", depth.height}}, bytesOf(depth.samples));
    });
}

Answer Studio::preview(const Request& request) {
    const Json json = objectOf(request.body);
    const int id = numberMember(json, "id", 0, 1 << 30);
    const Chain chain = parseChain(member(json, "chain"));
    return onWorker(Lane::preview, [&](const WorkQueue::Job& job) {
        OpenPicture& picture = opened(id);
        std::vector<StepReport> reports;
        const Image& image = picture.preview(chain, sourcesFor(picture), job, reports);
        return pictureAnswer(image, reports);
    });
}

Answer Studio::region(const Request& request) {
    const Json json = objectOf(request.body);
    const int id = numberMember(json, "id", 0, 1 << 30);
    const Chain chain = parseChain(member(json, "chain"));
    const Json& place = member(json, "rect");
    if (!place.is_object()) throw Refused(400, "'rect' is no object");
    Rect rect{};
    rect.left = numberMember(place, "left", 0, ZEL_LONGEST_SIDE);
    rect.top = numberMember(place, "top", 0, ZEL_LONGEST_SIDE);
    rect.width = numberMember(place, "width", 1, ZEL_LONGEST_SIDE);
    rect.height = numberMember(place, "height", 1, ZEL_LONGEST_SIDE);
    const int width = numberMember(json, "width", 1, kLargestScreen);
    const int height = numberMember(json, "height", 1, kLargestScreen);
    const bool before = flag(json, "before");
    return onWorker(Lane::region, [&](const WorkQueue::Job& job) {
        OpenPicture& picture = opened(id);
        const Image& whole = picture.whole();
        if (rect.left + rect.width > whole.width || rect.top + rect.height > whole.height ||
            width > rect.width || height > rect.height)
            throw Refused(400, "the part does not lie in the picture");
        std::vector<StepReport> reports;
        const Image& image = before ? whole : picture.result(chain, sourcesFor(picture), job, reports);
        return pictureAnswer(reduced(image, rect, width, height), reports);
    });
}

Answer Studio::save(const Request& request) {
    const Json json = objectOf(request.body);
    const int id = numberMember(json, "id", 0, 1 << 30);
    const Chain chain = parseChain(member(json, "chain"));
    const std::string name = textMember(json, "name");
    if (!canSave(name)) throw Refused(400, "'" + name + "' must end in " + kOutputSuffixes);
    const fs::path target = m_folder.toWrite(name);
    std::error_code error;
    if (fs::exists(target, error) && !flag(json, "replace"))
        throw Refused(409, "'" + name + "' is there already");
    return onWorker(Lane::task, [&](const WorkQueue::Job& job) {
        OpenPicture& picture = opened(id);
        if (picture.name() == name && fs::exists(target))
            throw Refused(409, "the picture that you work on stays as it is; give the result another name");
        std::vector<StepReport> reports;
        const Image& result = picture.result(chain, sourcesFor(picture), job, reports);
        for (const StepReport& report : reports)
            if (report.state == "failed") throw Failure(report.why);
        job.tell("writing", 1);
        const auto notes = savePicture(target, result);
        {
            const std::lock_guard lock(m_mutex);
            m_thumbnails.erase(name);
        }
        return jsonAnswer({{"name", name}, {"notes", notes}, {"steps", stepsJson(reports)}});
    });
}

Answer Studio::progress(const Request&) {
    const Progress progress = m_queue.progress();
    return jsonAnswer({{"busy", progress.busy}, {"stage", progress.stage}, {"fraction", progress.fraction}});
}

Answer Studio::recipe(const Request& request) {
    return jsonAnswer(recipeForPage(m_folder, queryText(request, "name")));
}

Answer Studio::recipeKeep(const Request& request) {
    const Json json = objectOf(request.body);
    std::vector<std::string> notes;
    const std::string name =
        keepRecipe(m_folder, textMember(json, "name"), parseChain(member(json, "chain")), notes);
    return jsonAnswer({{"name", name}, {"notes", notes}});
}

Answer Studio::batchStart(const Request& request) {
    const Json json = objectOf(request.body);
    m_batch.start(parseChain(member(json, "chain")), names(member(json, "names")), textMember(json, "folder"),
                  flag(json, "replace"));
    return jsonAnswer(m_batch.state());
}

Answer Studio::batchState(const Request&) {
    return jsonAnswer(m_batch.state());
}

Answer Studio::batchCancel(const Request&) {
    m_batch.cancel();
    return jsonAnswer(m_batch.state());
}

}  // namespace zelcli::studio
