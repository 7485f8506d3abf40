#include "words.h"

#include <edlib.h>
#include <CLI/StringTools.hpp>

#include <algorithm>

namespace tool {

namespace {

/// Letters to change, add and leave out, each once; negative when they are more than `most`.
int distance(const std::string& from, const std::string& to, int most) {
    const EdlibAlignConfig config = edlibNewAlignConfig(most, EDLIB_MODE_NW, EDLIB_TASK_DISTANCE, nullptr, 0);
    const EdlibAlignResult result =
        edlibAlign(from.data(), static_cast<int>(from.size()), to.data(), static_cast<int>(to.size()), config);
    const int letters = result.editDistance;
    edlibFreeAlignResult(result);
    return letters;
}

/// Most wrong letters in a word that is still recognised: two, fewer in a short one, whose dashes don't count.
int mostWrong(const std::string& word) {
    const std::size_t dashes = std::min(word.size(), word.find_first_not_of('-'));
    return static_cast<int>(std::min<std::size_t>(2, (word.size() - dashes) / 2));
}

}  // namespace

std::string nearest(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string mistyped = CLI::detail::to_lower(word);
    std::string found;
    int most = mostWrong(word);
    for (const std::string& candidate : candidates) {
        const int letters =
            most < 0 || mistyped.empty() ? -1 : distance(mistyped, CLI::detail::to_lower(candidate), most);
        if (letters >= 0) {
            found = candidate;
            most = letters - 1;  // of equally near ones the first
        }
    }
    return found;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string meant = nearest(word, candidates);
    return meant.empty() ? "" : "; did you mean \"" + meant + "\"?";
}

std::string listed(const std::vector<std::string>& words) {
    return CLI::detail::join(words, ", ");
}

std::string listed(const std::vector<std::string>& words, const std::string& conjunction) {
    if (words.size() < 2) {
        return listed(words);
    }
    return listed({words.begin(), words.end() - 1}) + ' ' + conjunction + ' ' + words.back();
}

std::string entries(std::int64_t count) {
    return std::to_string(count) + (count == 1 ? " entry" : " entries");
}

std::string entriesFrom(std::int64_t first, std::int64_t last) {
    return first == last ? "entry " + std::to_string(last)
                         : "entries " + std::to_string(first) + " to " + std::to_string(last);
}

}  // namespace tool
