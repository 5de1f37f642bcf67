#pragma once

#include <memory>

#include "cli/studio/guard.h"
#include "cli/studio/studio.h"

namespace httplib {
class Server;
}

namespace zelcli::studio {

/// The studio on the loopback address, behind the guard.
class HttpDoor {
public:
    /// Takes a port that is free. Throws Failure where there is none.
    explicit HttpDoor(Studio& studio);
    ~HttpDoor();
    HttpDoor(const HttpDoor&) = delete;
    HttpDoor& operator=(const HttpDoor&) = delete;

    const Address& address() const { return m_address; }
    /// Until close.
    void serve();
    /// From any thread.
    void close();

private:
    Studio& m_studio;
    Address m_address;
    std::unique_ptr<httplib::Server> m_server;
};

}  // namespace zelcli::studio
