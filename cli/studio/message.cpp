#include "cli/studio/message.h"

#include <cmath>

namespace zelcli::studio {

std::string textOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Answer jsonAnswer(const Json& json) {
    return {200, "application/json", textOf(json)};
}

Answer pixelAnswer(const Json& head, std::string_view pixels) {
    const std::string text = textOf(head);
    Answer answer{200, "application/octet-stream", {}};
    answer.body.reserve(4 + text.size() + pixels.size());
    for (int byte = 0; byte < 4; ++byte) answer.body += static_cast<char>(text.size() >> (8 * byte) & 0xFF);
    answer.body.append(text).append(pixels);
    return answer;
}

Json objectOf(const std::string& body) {
    Json json = Json::parse(body, nullptr, /*allow_exceptions=*/false);
    if (!json.is_object()) throw Refused(400, "the request is not a JSON object");
    return json;
}

std::string textMember(const Json& object, const char* name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_string())
        throw Refused(400, std::string("the request lacks the text '") + name + "'");
    return member->get<std::string>();
}

int numberMember(const Json& object, const char* name, int minimum, int maximum) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_number())
        throw Refused(400, std::string("the request lacks the number '") + name + "'");
    const double number = member->get<double>();
    if (!(number >= minimum && number <= maximum) || number != std::floor(number))
        throw Refused(400, std::string("'") + name + "' is out of range");
    return static_cast<int>(number);
}

}  // namespace zelcli::studio
