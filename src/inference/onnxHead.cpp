#include "inference/onnxHead.h"

#include <algorithm>
#include <limits>
#include <set>

#include "inference/wireReader.h"

namespace zellab::platform {

namespace {

using Message = std::span<const unsigned char>;

// Field numbers of the messages, named after message and field.
constexpr std::uint64_t kModelVersion = 1, kModelGraph = 7;
constexpr std::uint64_t kGraphNode = 1, kGraphInitializer = 5, kGraphInput = 11, kGraphOutput = 12;
constexpr std::uint64_t kInitializerName = 8;
constexpr std::uint64_t kValueName = 1, kValueType = 2, kTypeTensor = 1;
constexpr std::uint64_t kTensorElement = 1, kTensorShape = 2, kShapeDim = 1, kDimValue = 1;

/// Calls use(field) for every field; false where the message is damaged or a call says so.
template <typename Use>
bool walk(Message message, const Use& use) {
    WireReader reader(message);
    WireField field;
    while (reader.next(field))
        if (!use(field)) return false;
    return !reader.failed();
}

bool readShape(Message shape, OnnxValue& value) {
    return walk(shape, [&](const WireField& field) {
        if (field.number != kShapeDim || !field.isBytes) return true;
        value.dims.push_back(0);
        return walk(field.bytes, [&](const WireField& dim) {
            constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
            // A negative size stands for an open one, like a named size.
            if (dim.number == kDimValue && !dim.isBytes && dim.value <= kMost)
                value.dims.back() = static_cast<std::int64_t>(dim.value);
            return true;
        });
    });
}

bool readType(Message type, OnnxValue& value) {
    return walk(type, [&](const WireField& field) {
        if (field.number != kTypeTensor || !field.isBytes) return true;
        return walk(field.bytes, [&](const WireField& part) {
            if (part.number == kTensorElement && !part.isBytes)
                value.elementType = static_cast<int>(std::min<std::uint64_t>(part.value, 0xFFFF));
            return part.number != kTensorShape || !part.isBytes || readShape(part.bytes, value);
        });
    });
}

bool readValue(Message message, std::vector<OnnxValue>& values) {
    OnnxValue value;
    const bool read = walk(message, [&](const WireField& field) {
        if (field.number == kValueName && field.isBytes) value.name = field.text();
        return field.number != kValueType || !field.isBytes || readType(field.bytes, value);
    });
    values.push_back(std::move(value));
    return read;
}

/// The name of a stored weight.
bool readInitializer(Message message, std::set<std::string>& names) {
    return walk(message, [&](const WireField& field) {
        if (field.number == kInitializerName && field.isBytes) names.insert(field.text());
        return true;
    });
}

/// The edges of the graph; false where it is damaged or holds no node.
bool readGraph(Message graph, OnnxHead& head) {
    std::set<std::string> weights;
    std::size_t nodes = 0;
    const bool read = walk(graph, [&](const WireField& field) {
        if (!field.isBytes) return true;
        if (field.number == kGraphNode) ++nodes;
        if (field.number == kGraphInitializer) return readInitializer(field.bytes, weights);
        if (field.number == kGraphInput) return readValue(field.bytes, head.inputs);
        return field.number != kGraphOutput || readValue(field.bytes, head.outputs);
    });
    std::erase_if(head.inputs, [&](const OnnxValue& value) { return weights.contains(value.name); });
    return read && nodes > 0;
}

}  // namespace

std::optional<OnnxHead> readOnnxHead(std::span<const unsigned char> file) {
    OnnxHead head;
    bool hasVersion = false, hasGraph = false;
    const bool read = walk(file, [&](const WireField& field) {
        if (field.number == kModelVersion && !field.isBytes) hasVersion = true;
        if (field.number != kModelGraph || !field.isBytes) return true;
        if (hasGraph) return false;  // one model, one graph
        hasGraph = true;
        return readGraph(field.bytes, head);
    });
    if (!read || !hasVersion || !hasGraph || head.inputs.empty() || head.outputs.empty()) return std::nullopt;
    return head;
}

}  // namespace zellab::platform
