#pragma once

#include <string>
#include <vector>

namespace pallix::tool {

// The candidate closest to a mistyped word, when it is close enough to be what was meant (a
// few edits, in proportion to the word's length, ignoring case); empty otherwise.
std::string closestMatch(const std::string& word, const std::vector<std::string>& candidates);

// "; did you mean 'X'?" for the closest candidate, or nothing.
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates);
// "; did you mean 'MEANT'?", or nothing when `meant` is empty.
std::string didYouMean(const std::string& meant);

} // namespace pallix::tool
