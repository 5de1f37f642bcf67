#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zelcli::studio {

using Json = nlohmann::ordered_json;

/// A request behind the guard: its path without the secret ("api/open"), and its body.
struct Request {
    std::string method, path;
    std::map<std::string, std::string> query;
    std::string body;
};

struct Answer {
    int status = 200;
    std::string type = "application/json";
    std::string body;
};

/// A request that is answered by a status and a sentence.
class Refused : public std::runtime_error {
public:
    Refused(int status, const std::string& why) : std::runtime_error(why), m_status(status) {}
    int status() const { return m_status; }

private:
    int m_status;
};

/// The work was left for a newer request of its kind.
class Superseded : public std::exception {};

/// Names of files may hold bytes that are no UTF-8: they show as a replacement character.
std::string textOf(const Json& json);

Answer jsonAnswer(const Json& json);

/// Pixels with what belongs to them: the length of the JSON text (4 bytes, low one first), the text, the pixels.
Answer pixelAnswer(const Json& head, std::string_view pixels);

/// The body as a JSON object. Throws Refused.
Json objectOf(const std::string& body);

/// A member of an object, of the right kind. Throws Refused.
std::string textMember(const Json& object, const char* name);
int numberMember(const Json& object, const char* name, int minimum, int maximum);

}  // namespace zelcli::studio
