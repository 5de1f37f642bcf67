#include "cli/studio/httpDoor.h"

#include <httplib.h>

#include "cli/failure.h"
#include "cli/studio/page.h"

namespace zelcli::studio {

namespace {

constexpr int kThreads = 16;
constexpr int kSecondsForBody = 30;
/// The page's own files and what it asks for; nothing from elsewhere, and in no other page's frame. Nothing of it
/// stays in the browser's store.
const httplib::Headers kHeaders = {{"Content-Security-Policy",
                                    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' "
                                    "blob: data:; connect-src 'self'; "
                                    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
                                   {"X-Content-Type-Options", "nosniff"},
                                   {"Referrer-Policy", "no-referrer"},
                                   {"Cross-Origin-Resource-Policy", "same-origin"},
                                   {"Cross-Origin-Opener-Policy", "same-origin"},
                                   {"Cache-Control", "no-store"}};

RequestHead headOf(const httplib::Request& request) {
    return {request.method, request.path, {request.headers.begin(), request.headers.end()}};
}

Request requestOf(const httplib::Request& from) {
    Request request{from.method, pathBehindSecret(from.path), {}, from.body};
    for (const auto& [name, value] : from.params) request.query.emplace(name, value);
    return request;
}

void put(const Answer& answer, httplib::Response& response) {
    response.status = answer.status;
    if (answer.status != 204) response.set_content(answer.body, answer.type);
}

}  // namespace

HttpDoor::HttpDoor(Studio& studio) : m_studio(studio), m_server(std::make_unique<httplib::Server>()) {
    httplib::Server& server = *m_server;
    m_address.secret = makeSecret();
    server.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    // A body that was not read must not be taken for the next request, and no quiet connection holds a thread.
    server.set_keep_alive_max_count(1);
    server.set_read_timeout(kSecondsForBody);
    server.set_payload_max_length(kLargestUpload);
    server.set_tcp_nodelay(true);
    server.set_default_headers(kHeaders);
    server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        const auto refusal = refusalOf(headOf(request), m_address);
        if (!refusal) return httplib::Server::HandlerResponse::Unhandled;
        response.status = refusal->status;
        response.set_content(textOf({{"error", refusal->why}}), "application/json");
        return httplib::Server::HandlerResponse::Handled;
    });
    server.Get(".*", [this](const httplib::Request& from, httplib::Response& response) {
        const Request request = requestOf(from);
        if (const PageFile* const file = findPageFile(request.path))
            response.set_content(file->bytes.data(), file->bytes.size(), std::string(file->type));
        else
            put(m_studio.answer(request), response);
    });
    server.Post(".*", [this](const httplib::Request& from, httplib::Response& response) {
        put(m_studio.answer(requestOf(from)), response);
    });
    m_address.port = server.bind_to_any_port("127.0.0.1");
    if (m_address.port <= 0) throw Failure("there is no free port on the loopback address");
}

HttpDoor::~HttpDoor() = default;

void HttpDoor::serve() {
    if (!m_server->listen_after_bind()) throw Failure("the loopback address cannot be listened on");
}

void HttpDoor::close() {
    m_server->stop();
}

}  // namespace zelcli::studio
