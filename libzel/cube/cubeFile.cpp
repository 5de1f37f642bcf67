#include "libzel/cube/cubeFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <string_view>

#include "libzel/failure.h"
#include "platform/fileBytes.h"

namespace zel {

namespace {

constexpr int kLeastSize = 2, kMostSize = 256;

/// One line, cut into words at blanks.
class Words {
public:
    explicit Words(std::string_view line) : m_rest(line) {}

    /// The next word, empty at the end.
    std::string_view next() {
        skipBlanks();
        const auto end = std::min(m_rest.find_first_of(kBlanks), m_rest.size());
        const auto word = m_rest.substr(0, end);
        m_rest.remove_prefix(end);
        return word;
    }
    /// All that is left, without blanks around it.
    std::string_view remainder() {
        skipBlanks();
        const auto last = m_rest.find_last_not_of(kBlanks);
        return m_rest.substr(0, last == std::string_view::npos ? 0 : last + 1);
    }

private:
    static constexpr std::string_view kBlanks = " \t\r\v\f";

    void skipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size())); }

    std::string_view m_rest;
};

/// Text that came with the file, fit for a message: short, and printable.
std::string shown(std::string_view word) {
    constexpr std::size_t kLongest = 24;
    std::string text(word.substr(0, kLongest));
    for (char& c : text)
        if (c < ' ' || c > '~') c = '?';
    return "'" + text + (word.size() > kLongest ? "...'" : "'");
}

class CubeReader {
public:
    CubeFile read(std::istream& text) {
        std::string line;
        while (std::getline(text, line)) {
            ++m_line;
            if (m_line == 1 && line.starts_with("\xef\xbb\xbf")) line.erase(0, 3);
            readLine(line);
        }
        if (text.bad()) throw Failure("cannot be read to its end");
        if (m_cube.size == 0) throw Failure("is no 3-D lookup: it has no LUT_3D_SIZE");
        checkDomain();
        if (m_cube.samples.size() < wanted())
            throw Failure("ends after " + std::to_string(m_cube.samples.size() / 3) + " of " +
                          std::to_string(wanted() / 3) + " colours");
        return std::move(m_cube);
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw Failure("line " + std::to_string(m_line) + ": " + what);
    }

    std::size_t wanted() const {
        const auto size = static_cast<std::size_t>(m_cube.size);
        return size * size * size * 3;
    }

    void readLine(std::string_view line) {
        Words words(line);
        const std::string_view first = words.next();
        if (first.empty() || first.front() == '#') return;
        const bool isKeyword = first.front() >= 'A' && first.front() <= 'Z';
        if (isKeyword)
            readKeyword(first, words);
        else
            readColour(Words(line));
    }

    void readKeyword(std::string_view keyword, Words& words) {
        if (keyword == "TITLE") {
            m_cube.title = unquoted(words.remainder());
        } else if (keyword == "LUT_3D_SIZE") {
            readSize(words);
        } else if (keyword == "LUT_1D_SIZE") {
            fail("holds a 1-D lookup; only 3-D ones can be used");
        } else if (keyword == "DOMAIN_MIN") {
            m_cube.domainMin = readThree(words);
        } else if (keyword == "DOMAIN_MAX") {
            m_cube.domainMax = readThree(words);
        } else if (keyword == "LUT_3D_INPUT_RANGE") {
            m_cube.domainMin.fill(readNumber(words.next()));
            m_cube.domainMax.fill(readNumber(words.next()));
            checkEnd(words);
        }
    }

    static std::string unquoted(std::string_view text) {
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
            text = text.substr(1, text.size() - 2);
        return std::string(text);
    }

    void readSize(Words& words) {
        const std::string_view word = words.next();
        int size = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), size);
        if (error != std::errc() || end != word.data() + word.size() || size < kLeastSize || size > kMostSize)
            fail("LUT_3D_SIZE must be a whole number from 2 to 256, not " + shown(word));
        checkEnd(words);
        if (m_cube.size != 0) fail("LUT_3D_SIZE is given twice");
        m_cube.size = size;
    }

    void readColour(Words words) {
        if (m_cube.size == 0) fail("a colour stands before LUT_3D_SIZE");
        if (m_cube.samples.size() == wanted()) fail("more colours than LUT_3D_SIZE asks for");
        // Grows with what the file holds, not with what its head claims.
        const std::array<float, 3> colour = readThree(words);
        m_cube.samples.insert(m_cube.samples.end(), colour.begin(), colour.end());
    }

    std::array<float, 3> readThree(Words& words) const {
        std::array<float, 3> values;
        for (float& value : values) value = readNumber(words.next());
        checkEnd(words);
        return values;
    }

    float readNumber(std::string_view word) const {
        if (word.empty()) fail("a number is missing");
        const char* const end = word.data() + word.size();
        const char* const begin = word.data() + (word.front() == '+' ? 1 : 0);
        double value = 0;
        const auto [rest, error] = std::from_chars(begin, end, value);
        constexpr double kLargest = 1e30;
        if (rest != end || error != std::errc() || std::isnan(value) || std::abs(value) > kLargest)
            fail(shown(word) + " is no number that could be used");
        return static_cast<float>(value);
    }

    void checkEnd(Words& words) const {
        const std::string_view extra = words.next();
        if (!extra.empty() && extra.front() != '#') fail(shown(extra) + " is one value too many");
    }

    void checkDomain() const {
        for (std::size_t c = 0; c < 3; ++c)
            if (!(m_cube.domainMin[c] < m_cube.domainMax[c])) throw Failure("has an empty domain");
    }

    CubeFile m_cube;
    int m_line = 0;
};

/// Where an input falls between two steps of the file's axis.
struct Between {
    std::size_t lower, upper;
    float share;  // of the upper step
};

Between between(float input, float low, float high, int size) {
    const auto last = static_cast<float>(size - 1);
    const float position = std::clamp((input - low) / (high - low), 0.0f, 1.0f) * last;
    const auto lower = static_cast<std::size_t>(position);
    return {lower, std::min(lower + 1, static_cast<std::size_t>(size - 1)),
            position - static_cast<float>(lower)};
}

/// One channel at an input colour, trilinear.
float sample(const CubeFile& cube, const Between& r, const Between& g, const Between& b,
             std::size_t channel) {
    const auto size = static_cast<std::size_t>(cube.size);
    const auto at = [&](std::size_t red, std::size_t green, std::size_t blue) {
        return cube.samples[3 * ((blue * size + green) * size + red) + channel];
    };
    const auto alongRed = [&](std::size_t green, std::size_t blue) {
        return std::lerp(at(r.lower, green, blue), at(r.upper, green, blue), r.share);
    };
    const auto alongGreen = [&](std::size_t blue) {
        return std::lerp(alongRed(g.lower, blue), alongRed(g.upper, blue), g.share);
    };
    return std::lerp(alongGreen(b.lower), alongGreen(b.upper), b.share);
}

}  // namespace

CubeFile readCube(std::istream& text) {
    return CubeReader().read(text);
}

CubeFile readCubeFile(const std::string& path) {
    const auto file = zellab::platform::readFileBytes(path.c_str());
    if (!file.bytes) throw Failure(file.why);
    std::istringstream text(std::string(file.bytes->begin(), file.bytes->end()));
    return readCube(text);
}

CubeFile readGivenCube(const std::string& path) {
    try {
        return readCubeFile(path);
    } catch (const Failure& failure) {
        throw Failure(path + ": " + failure.what(), ZEL_BAD_FILE);
    }
}

std::vector<unsigned char> cubePicture(const CubeFile& cube) {
    constexpr std::size_t kSteps = 16, kTilesAcross = 4, kSide = kSteps * kTilesAcross;
    std::vector<unsigned char> picture(4 * kSide * kSide, 255);
    std::array<std::array<Between, kSteps>, 3> axes;
    for (std::size_t c = 0; c < 3; ++c)
        for (std::size_t i = 0; i < kSteps; ++i)
            axes[c][i] = between(static_cast<float>(i) / (kSteps - 1), cube.domainMin[c], cube.domainMax[c],
                                 cube.size);
    for (std::size_t b = 0; b < kSteps; ++b)
        for (std::size_t g = 0; g < kSteps; ++g)
            for (std::size_t r = 0; r < kSteps; ++r) {
                const std::size_t x = b % kTilesAcross * kSteps + r, y = b / kTilesAcross * kSteps + g;
                for (std::size_t c = 0; c < 3; ++c) {
                    const float value = sample(cube, axes[0][r], axes[1][g], axes[2][b], c);
                    picture[4 * (y * kSide + x) + c] =
                        static_cast<unsigned char>(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f);
                }
            }
    return picture;
}

}  // namespace zel
