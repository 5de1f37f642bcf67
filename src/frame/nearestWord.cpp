#include "frame/nearestWord.h"

#include <algorithm>

namespace zellab {

namespace {

/// Edit distance with swaps of neighbours (optimal string alignment).
std::size_t editDistance(const std::string& a, const std::string& b) {
    const std::size_t columns = b.size() + 1;
    std::vector<std::size_t> cost((a.size() + 1) * columns);
    const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& { return cost[i * columns + j]; };
    for (std::size_t i = 0; i <= a.size(); ++i) at(i, 0) = i;
    for (std::size_t j = 0; j <= b.size(); ++j) at(0, j) = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    return at(a.size(), b.size());
}

}  // namespace

std::string nearestWord(const std::string& word, const std::vector<std::string>& candidates) {
    constexpr std::size_t kLongestWord = 64;  // longer words are no typing slips
    if (word.empty() || word.size() > kLongestWord) return {};
    std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
    std::string nearest;
    for (const auto& candidate : candidates)
        if (const std::size_t distance = editDistance(word, candidate); distance < best) {
            best = distance;
            nearest = candidate;
        }
    if (!nearest.empty()) return nearest;
    // Half a name is a common slip as well: "smooth" for "nature-smooth".
    for (const auto& candidate : candidates)
        if (word.size() >= 4 && candidate.find(word) != std::string::npos) return candidate;
    return {};
}

}  // namespace zellab
