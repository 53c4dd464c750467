#include "bindings/names/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>
#include <utility>

namespace binding {

namespace {

bool SameLetter(char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) ==
           std::tolower(static_cast<unsigned char>(right));
}

/// The smallest number of letters to add, remove, replace or swap with a neighbour that turns one
/// text into the other.
std::size_t Distance(const std::string& left, const std::string& right) {
    // Each row has the distances between one prefix of left and every prefix of right. The prefix
    // of left has as many letters as have been seen (row), one fewer (last), or two fewer
    // (lastButOne).
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    std::vector<std::size_t> last;
    std::vector<std::size_t> lastButOne;
    for (std::size_t seen = 1; seen <= left.size(); ++seen) {
        lastButOne = std::exchange(last, row);
        row[0] = seen;
        for (std::size_t size = 1; size <= right.size(); ++size) {
            const bool same = SameLetter(left[seen - 1], right[size - 1]);
            row[size] =
                std::min({last[size - 1] + (same ? 0U : 1U), row[size - 1] + 1, last[size] + 1});
            if (seen > 1 && size > 1 && SameLetter(left[seen - 1], right[size - 2]) &&
                SameLetter(left[seen - 2], right[size - 1])) {
                row[size] = std::min(row[size], lastButOne[size - 2] + 1);
            }
        }
    }
    return row.back();
}

}  // namespace

std::string NearestName(const std::string& name, const std::vector<std::string>& known) {
    // A text that is far longer than every name is not a misspelt name, and comparing it would take
    // long.
    constexpr std::size_t kLongestName = 256;
    std::string nearest;
    std::size_t fewest = 0;
    for (const std::string& candidate : known) {
        if (name.size() > kLongestName || candidate.size() > kLongestName) {
            continue;
        }
        const std::size_t distance = Distance(name, candidate);
        if (distance * 2 < candidate.size() && (nearest.empty() || distance < fewest)) {
            nearest = candidate;
            fewest = distance;
        }
    }
    return nearest;
}

std::string Suggestion(const std::string& name) {
    return name.empty() ? "" : "; did you mean " + name + "?";
}

}  // namespace binding
