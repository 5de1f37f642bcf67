#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/randomImage.h"

/// ONNX networks of a few bytes, written by hand: each output is a weighted sum of the input's three planes.

namespace zeltest {

/// A protocol-buffer message in the making.
class Wire {
public:
    Wire& number(unsigned field, std::uint64_t value) {
        varint(field << 3);
        varint(value);
        return *this;
    }
    Wire& bytes(unsigned field, const Bytes& data) {
        varint(field << 3 | 2);
        varint(data.size());
        m_bytes.insert(m_bytes.end(), data.begin(), data.end());
        return *this;
    }
    Wire& text(unsigned field, const std::string& words) {
        return bytes(field, {words.begin(), words.end()});
    }
    Wire& message(unsigned field, const Wire& inner) { return bytes(field, inner.m_bytes); }
    const Bytes& done() const { return m_bytes; }

private:
    void varint(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7) m_bytes.push_back(static_cast<unsigned char>(value | 0x80));
        m_bytes.push_back(static_cast<unsigned char>(value));
    }
    Bytes m_bytes;
};

struct TinyOutput {
    std::string name;
    std::vector<float> weights;  // of blue, green, red
};

struct TinyModel {
    std::vector<std::int64_t> input{1, 3, 8, 10};  // below 0: a named, open size
    unsigned inputType = 1;
    std::vector<TinyOutput> outputs{{"confidence", {0, 1, 0}}, {"depth", {1, 0, 0}}};
    bool nodesBackwards = false;   // the nodes in the other order than the graph's outputs
    bool weightsAsInputs = false;  // as old files list them
    std::string operation = "Conv";
};

inline Wire tinyValue(const std::string& name, unsigned type, const std::vector<std::int64_t>& dims) {
    Wire shape;
    for (const std::int64_t size : dims)
        shape.message(1,
                      size < 0 ? Wire().text(2, "open") : Wire().number(1, static_cast<std::uint64_t>(size)));
    return Wire().text(1, name).message(2, Wire().message(1, Wire().number(1, type).message(2, shape)));
}

inline Bytes tinyOnnx(const TinyModel& model = {}) {
    Wire graph;
    for (std::size_t i = 0; i < model.outputs.size(); ++i) {
        const TinyOutput& output = model.outputs[model.nodesBackwards ? model.outputs.size() - 1 - i : i];
        const std::string weight = output.name + "_weight";
        Wire node;
        node.text(1, "input");
        if (model.operation == "Conv") node.text(1, weight);
        node.text(2, output.name).text(3, output.name + "_node").text(4, model.operation);
        graph.message(
            1, node.message(5, Wire().text(1, "kernel_shape").number(8, 1).number(8, 1).number(20, 7)));
        Bytes raw(output.weights.size() * sizeof(float));
        std::memcpy(raw.data(), output.weights.data(), raw.size());
        Wire tensor;
        for (const unsigned size : {1u, 3u, 1u, 1u}) tensor.number(1, size);
        graph.message(5, tensor.number(2, 1).text(8, weight).bytes(9, raw));
        if (model.weightsAsInputs) graph.message(11, tinyValue(weight, 1, {1, 3, 1, 1}));
    }
    graph.text(2, "tiny").message(11, tinyValue("input", model.inputType, model.input));
    for (const TinyOutput& output : model.outputs)
        graph.message(12, tinyValue(output.name, 1, {1, 1, model.input[2], model.input.back()}));
    return Wire().number(1, 7).message(7, graph).message(8, Wire().text(1, "").number(2, 11)).done();
}

}  // namespace zeltest
