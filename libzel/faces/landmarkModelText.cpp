#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "libzel/faces/landmarkModel.h"

/// The model's text: lines of numbers, and lines of one character a weight.

namespace zel {

namespace {

constexpr int kMiddleLevel = 44;  // the character of weight 0
constexpr std::size_t kLineLength = 120;

/// Printable characters from '#' on, without the two that mean more in a program's text.
char characterOf(int weight) {
    int c = '#' + weight + kMiddleLevel;
    if (c >= '?') ++c;
    if (c >= '\\') ++c;
    return static_cast<char>(c);
}

int weightOf(char c) {
    const int skipped = (c > '?' ? 1 : 0) + (c > '\\' ? 1 : 0);
    return c - skipped - '#' - kMiddleLevel;
}

class Writer {
public:
    void number(float value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.6g", static_cast<double>(value));
        if (m_line.size() + 1 + std::char_traits<char>::length(text) > kLineLength) endLine();
        if (!m_line.empty()) m_line += ' ';
        m_line += text;
    }
    void weight(int value) {
        if (m_line.size() == kLineLength) endLine();
        m_line += characterOf(value);
    }
    void endLine() {
        if (!m_line.empty()) m_text += "\"" + m_line + "\",\n";
        m_line.clear();
    }
    const std::string& text() const { return m_text; }

private:
    std::string m_line, m_text;
};

class Reader {
public:
    Reader(const char* const* lines, std::size_t count) : m_lines(lines), m_count(count) {}

    float number() {
        char* end = nullptr;
        const float value = std::strtof(place(), &end);
        if (end == m_place) throw std::runtime_error("the landmark table is damaged");
        m_place = end;
        return value;
    }
    int weight() {
        const char c = *place();
        ++m_place;
        return weightOf(c);
    }
    void endLine() { m_place = nullptr; }

private:
    const char* place() {
        if (!m_place || !*m_place) {
            if (m_next == m_count) throw std::runtime_error("the landmark table ends early");
            m_place = m_lines[m_next++];
        }
        return m_place;
    }
    const char* const* m_lines;
    std::size_t m_count, m_next = 0;
    const char* m_place = nullptr;
};

void write(Writer& writer, const LinearMap& map) {
    for (std::size_t r = 0; r < map.rows; ++r) {
        writer.number(map.bias[r]);
        writer.number(map.factor[r]);
        writer.endLine();
        for (std::size_t i = 0; i < kDescriptorSize; ++i) writer.weight(map.weights[r * kDescriptorSize + i]);
        writer.endLine();
    }
}

LinearMap readMap(Reader& reader, std::size_t rows) {
    LinearMap map;
    map.rows = rows;
    for (std::size_t r = 0; r < rows; ++r) {
        map.bias.push_back(reader.number());
        map.factor.push_back(reader.number());
        reader.endLine();
        for (std::size_t i = 0; i < kDescriptorSize; ++i)
            map.weights.push_back(static_cast<std::int8_t>(reader.weight()));
        reader.endLine();
    }
    return map;
}

}  // namespace

std::string encodeModel(const LandmarkModel& model) {
    Writer writer;
    for (const auto& p : model.mean) {
        writer.number(p.x);
        writer.number(p.y);
    }
    for (std::size_t m = 0; m < kModes; ++m) {
        writer.number(model.deviation[m]);
        for (const float v : model.modes[m]) writer.number(v);
    }
    writer.endLine();
    for (const LinearMap& step : model.steps) write(writer, step);
    write(writer, model.trust);
    return writer.text();
}

LandmarkModel decodeModel(const char* const* lines, std::size_t count) {
    Reader reader(lines, count);
    LandmarkModel model;
    for (auto& p : model.mean) {
        p.x = reader.number();
        p.y = reader.number();
    }
    for (std::size_t m = 0; m < kModes; ++m) {
        model.deviation.push_back(reader.number());
        auto& mode = model.modes.emplace_back(2 * kLandmarks);
        for (float& v : mode) v = reader.number();
    }
    reader.endLine();
    for (std::size_t s = 0; s < std::size(kSights); ++s) model.steps.push_back(readMap(reader, kModes));
    model.trust = readMap(reader, 1);
    return model;
}

}  // namespace zel
