#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zellab::platform {

/// A value at the edge of a network's graph.
struct OnnxValue {
    std::string name;
    int elementType = 0;             // ONNX's number; 1 is a 32-bit float
    std::vector<std::int64_t> dims;  // 0 where the model leaves a dimension open
};

/// What an ONNX file says of its graph's edges, in the graph's order. Inputs are those that a caller must
/// give: weights that the file lists among them are left out.
struct OnnxHead {
    std::vector<OnnxValue> inputs, outputs;
};

/// Reads the edges. Nothing where the bytes are no ONNX model, or are cut short, or the graph has no node, no input
/// or no output, or where it would take down the library that runs it: a node that takes what nothing gives, a weight
/// whose bytes do not fit its sizes, a size, step or number of groups below 1.
std::optional<OnnxHead> readOnnxHead(std::span<const unsigned char> file);

}  // namespace zellab::platform
