#include "inference/onnxHead.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string_view>

#include "inference/wireReader.h"

namespace zellab::platform {

namespace {

using Message = std::span<const unsigned char>;

// Field numbers of the messages, named after message and field.
constexpr std::uint64_t kModelVersion = 1, kModelGraph = 7;
constexpr std::uint64_t kGraphNode = 1, kGraphInitializer = 5, kGraphInput = 11, kGraphOutput = 12;
constexpr std::uint64_t kNodeInput = 1, kNodeOutput = 2, kNodeAttribute = 5;
constexpr std::uint64_t kAttributeName = 1, kAttributeInt = 3, kAttributeInts = 8;
constexpr std::uint64_t kInitializerDim = 1, kInitializerElement = 2, kInitializerName = 8,
                        kInitializerRaw = 9;
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

/// What a graph's nodes and weights call each other.
struct GraphNames {
    std::set<std::string> weights, given, taken;  // given: by nodes; taken: by nodes
};

/// Bytes of one element of a type, of those that networks are made of; 0 for the others.
std::uint64_t elementBytes(std::uint64_t type) {
    constexpr std::uint64_t kFloat = 1, kInt32 = 6, kInt64 = 7, kHalf = 10, kDouble = 11;
    if (type == kInt64 || type == kDouble) return 8;
    if (type == kFloat || type == kInt32) return 4;
    return type == kHalf ? 2 : 0;
}

/// A stored weight; false where it has fewer or more bytes than its sizes tell.
bool readInitializer(Message message, std::set<std::string>& names) {
    constexpr std::uint64_t kMostElements = std::uint64_t{1} << 32;
    std::uint64_t count = 1, type = 0;
    std::optional<std::uint64_t> bytes;
    const bool read = walk(message, [&](const WireField& field) {
        if (field.number == kInitializerName && field.isBytes) names.insert(field.text());
        if (field.number == kInitializerElement && !field.isBytes) type = field.value;
        if (field.number == kInitializerRaw && field.isBytes) bytes = field.bytes.size();
        const auto grow = [&](std::uint64_t size) {
            count = size > kMostElements ? kMostElements : std::min(kMostElements, count * size);
        };
        if (field.number != kInitializerDim) return true;
        if (!field.isBytes) return grow(field.value), true;
        WireReader packed(field.bytes);
        for (std::uint64_t size = 0; packed.nextNumber(size);) grow(size);
        return !packed.failed();
    });
    return read && (!bytes || elementBytes(type) == 0 || *bytes == count * elementBytes(type));
}

/// False for a size, step or number of groups below 1: the library that runs networks divides by them.
bool readAttribute(Message message) {
    static constexpr std::string_view kCounts[] = {"group", "kernel_shape", "strides", "dilations"};
    bool isCount = false, hasValue = false, isPositive = true;
    const auto see = [&](std::uint64_t value) {
        hasValue = true;
        isPositive = isPositive && static_cast<std::int64_t>(value) >= 1;
    };
    const bool read = walk(message, [&](const WireField& field) {
        if (field.number == kAttributeName && field.isBytes)
            isCount = std::find(std::begin(kCounts), std::end(kCounts), field.text()) != std::end(kCounts);
        if (field.number != kAttributeInt && field.number != kAttributeInts) return true;
        if (!field.isBytes) return see(field.value), true;
        WireReader packed(field.bytes);
        for (std::uint64_t value = 0; packed.nextNumber(value);) see(value);
        return !packed.failed();
    });
    return read && (!isCount || (hasValue && isPositive));
}

bool readNode(Message message, GraphNames& names) {
    return walk(message, [&](const WireField& field) {
        if (!field.isBytes) return true;
        if (field.number == kNodeInput) names.taken.insert(field.text());
        if (field.number == kNodeOutput) names.given.insert(field.text());
        return field.number != kNodeAttribute || readAttribute(field.bytes);
    });
}

/// The edges of the graph; false where it is damaged or holds no node.
bool readGraph(Message graph, OnnxHead& head) {
    GraphNames names;
    std::size_t nodes = 0;
    const bool read = walk(graph, [&](const WireField& field) {
        if (!field.isBytes) return true;
        if (field.number == kGraphNode) return ++nodes, readNode(field.bytes, names);
        if (field.number == kGraphInitializer) return readInitializer(field.bytes, names.weights);
        if (field.number == kGraphInput) return readValue(field.bytes, head.inputs);
        return field.number != kGraphOutput || readValue(field.bytes, head.outputs);
    });
    for (const OnnxValue& input : head.inputs) names.given.insert(input.name);
    names.given.insert("");  // an input that a node does without
    const bool complete = std::all_of(names.taken.begin(), names.taken.end(), [&](const std::string& name) {
        return names.given.contains(name) || names.weights.contains(name);
    });
    std::erase_if(head.inputs, [&](const OnnxValue& value) { return names.weights.contains(value.name); });
    return read && complete && nodes > 0;
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
