#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace pallix::tool {

namespace {

char folded(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// Edits (insertions, deletions, substitutions and swaps of neighbours) between two words.
std::size_t editDistance(const std::string& a, const std::string& b) {
    const std::size_t rows = a.size() + 1;
    const std::size_t columns = b.size() + 1;
    std::vector<std::size_t> d(rows * columns);
    const auto at = [columns, &d](std::size_t i, std::size_t j) -> std::size_t& {
        return d[i * columns + j];
    };
    for (std::size_t i = 0; i < rows; ++i) {
        at(i, 0) = i;
    }
    for (std::size_t j = 0; j < columns; ++j) {
        at(0, j) = j;
    }
    for (std::size_t i = 1; i < rows; ++i) {
        for (std::size_t j = 1; j < columns; ++j) {
            const std::size_t cost = folded(a[i - 1]) == folded(b[j - 1]) ? 0 : 1;
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + cost});
            if (i > 1 && j > 1 && folded(a[i - 1]) == folded(b[j - 2]) &&
                folded(a[i - 2]) == folded(b[j - 1])) {
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
            }
        }
    }
    return at(rows - 1, columns - 1);
}

} // namespace

std::string closestMatch(const std::string& word, const std::vector<std::string>& candidates) {
    // One edit in a short word, then one more for every four letters.
    const std::size_t allowed = 1 + word.size() / 4;
    std::string best;
    std::size_t bestDistance = allowed + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = editDistance(word, candidate);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best;
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates) {
    return didYouMean(closestMatch(word, candidates));
}

std::string didYouMean(const std::string& meant) {
    return meant.empty() ? std::string() : "; did you mean '" + meant + "'?";
}

} // namespace pallix::tool
