#include "cli/drawing/sheet.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/drawing/glyphs.h"

namespace zelcli {

namespace {

constexpr int kMargin = 24, kLabelScale = 3, kFrame = 2;
constexpr int kLineHeight = kGlyphHeight * kLabelScale + 6,
              kLabelGap = 12;  // of a label's lines, and below them
constexpr int kUnbrokenLabel =
    480;  // a label that is no wider stands in one line, whatever the picture's width
constexpr int kMaxCellWidth = 960, kMaxCellHeight = 1280;
constexpr unsigned char kPaper[3] = {34, 34, 38}, kInk[3] = {232, 232, 232}, kLine[3] = {110, 110, 116};

std::size_t offsetOf(const Image& image, int x, int y) {
    return 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                static_cast<std::size_t>(x));
}

/// Source range behind target position i of n; at least one sample.
std::pair<int, int> areaOf(int i, int n, int sourceLength) {
    const int begin = static_cast<int>(std::int64_t{i} * sourceLength / n);
    const int end = static_cast<int>(std::int64_t{i + 1} * sourceLength / n);
    return {begin, std::max(begin + 1, end)};
}

/// Mean of an area; colours are weighed by their alpha so that what cannot be seen does not tint.
std::array<unsigned char, 4> meanOf(const Image& image, std::pair<int, int> columns,
                                    std::pair<int, int> rows) {
    std::uint64_t sums[3] = {0, 0, 0}, alphas = 0, count = 0;
    for (int y = rows.first; y < rows.second; ++y) {
        const unsigned char* p = image.rgba.data() + offsetOf(image, columns.first, y);
        for (int x = columns.first; x < columns.second; ++x, p += 4, ++count) {
            for (int c = 0; c < 3; ++c) sums[c] += std::uint64_t{p[c]} * p[3];
            alphas += p[3];
        }
    }
    std::array<unsigned char, 4> mean{0, 0, 0, static_cast<unsigned char>((alphas + count / 2) / count)};
    for (std::size_t c = 0; c < 3 && alphas > 0; ++c)
        mean[c] = static_cast<unsigned char>((sums[c] + alphas / 2) / alphas);
    return mean;
}

void fillRect(Image& image, int x0, int y0, int width, int height, const unsigned char (&rgb)[3]) {
    for (int y = y0; y < y0 + height; ++y)
        for (int x = x0; x < x0 + width; ++x) {
            unsigned char* p = image.rgba.data() + offsetOf(image, x, y);
            std::copy_n(rgb, 3, p);
            p[3] = 255;
        }
}

/// Copies a picture in, transparent parts over white as on a page.
void paste(Image& sheet, const Image& picture, int x0, int y0) {
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const unsigned char* p = picture.rgba.data() + offsetOf(picture, x, y);
            unsigned char* q = sheet.rgba.data() + offsetOf(sheet, x0 + x, y0 + y);
            for (int c = 0; c < 3; ++c)
                q[c] = static_cast<unsigned char>((p[c] * p[3] + 255 * (255 - p[3]) + 127) / 255);
        }
}

/// The label in lines no wider than the cell, broken at blanks; a word that is wider loses its end.
std::vector<std::string> labelLines(const std::string& label, int width) {
    std::vector<std::string> lines(1);
    for (std::size_t begin = 0; begin < label.size();) {
        const std::size_t end = std::min(label.find(' ', begin), label.size() - 1) + 1;
        const std::string word = label.substr(begin, end - begin);
        const std::string shown = word.back() == ' ' ? word.substr(0, word.size() - 1) : word;
        if (!lines.back().empty() && textWidth(lines.back() + shown, kLabelScale) > width)
            lines.emplace_back();
        lines.back() += word;
        begin = end;
    }
    for (std::string& line : lines)
        while (!line.empty() && textWidth(line, kLabelScale) > width) line.pop_back();
    return lines;
}

void placeCell(Image& sheet, const Image& picture, const std::vector<std::string>& label, int x, int y) {
    for (std::size_t i = 0; i < label.size(); ++i)
        drawText(sheet, x, kMargin + static_cast<int>(i) * kLineHeight, label[i], kLabelScale, kInk);
    fillRect(sheet, x - kFrame, y - kFrame, picture.width + 2 * kFrame, picture.height + 2 * kFrame, kLine);
    paste(sheet, picture, x, y);
}

}  // namespace

Image reduceToFit(const Image& image, int maxWidth, int maxHeight) {
    const double factor = std::min(
        {1.0, static_cast<double>(maxWidth) / image.width, static_cast<double>(maxHeight) / image.height});
    if (factor >= 1.0) return image;
    Image reduced;
    reduced.width = std::max(1, static_cast<int>(image.width * factor));
    reduced.height = std::max(1, static_cast<int>(image.height * factor));
    reduced.rgba.reserve(4 * static_cast<std::size_t>(reduced.width) *
                         static_cast<std::size_t>(reduced.height));
    for (int y = 0; y < reduced.height; ++y)
        for (int x = 0; x < reduced.width; ++x) {
            const auto mean =
                meanOf(image, areaOf(x, reduced.width, image.width), areaOf(y, reduced.height, image.height));
            reduced.rgba.insert(reduced.rgba.end(), mean.begin(), mean.end());
        }
    return reduced;
}

Image makeSheet(const std::vector<SheetCell>& cells) {
    std::vector<Image> pictures;
    int cellWidth = 1, cellHeight = 1;
    for (const SheetCell& cell : cells) {
        pictures.push_back(reduceToFit(cell.picture, kMaxCellWidth, kMaxCellHeight));
        cellWidth = std::max(
            {cellWidth, pictures.back().width, std::min(textWidth(cell.label, kLabelScale), kUnbrokenLabel)});
        cellHeight = std::max(cellHeight, pictures.back().height);
    }
    std::vector<std::vector<std::string>> labels;
    std::size_t lines = 1;
    for (const SheetCell& cell : cells)
        lines = std::max(lines, labels.emplace_back(labelLines(cell.label, cellWidth)).size());
    const int count = static_cast<int>(cells.size());
    const int pictureTop = kMargin + static_cast<int>(lines) * kLineHeight + kLabelGap;
    Image sheet;
    sheet.width = count * cellWidth + (count + 1) * kMargin;
    sheet.height = pictureTop + cellHeight + kMargin;
    sheet.rgba.resize(4 * static_cast<std::size_t>(sheet.width) * static_cast<std::size_t>(sheet.height));
    fillRect(sheet, 0, 0, sheet.width, sheet.height, kPaper);
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        placeCell(sheet, pictures[at], labels[at], kMargin + i * (cellWidth + kMargin), pictureTop);
    }
    return sheet;
}

Image makeSheet(const Image& before, const Image& after, const std::string& effectLabel) {
    return makeSheet({{before, "before"}, {after, "after  " + effectLabel}});
}

}  // namespace zelcli
