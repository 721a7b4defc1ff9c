// "Did you mean": the nearest of the names a command line may hold, for a mistyped one.
#include "Cli.h"
#include "Translate.h"

#include <algorithm>

namespace {

// Edits (insert, delete, replace, swap of neighbours) between two byte strings. Names are
// short, so the full table costs nothing.
size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        d[i][0] = i;
    for (size_t j = 0; j <= b.size(); ++j)
        d[0][j] = j;
    for (size_t i = 1; i <= a.size(); ++i)
        for (size_t j = 1; j <= b.size(); ++j) {
            size_t cost = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + cost});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

} // namespace

std::string ClosestName(const std::string& typed, const std::vector<std::string>& names) {
    std::string best;
    // A third of the name may be wrong, and at least one character: "--atr" finds "--attr",
    // "--x" finds nothing.
    size_t bestDistance = std::max<size_t>(1, typed.size() / 3) + 1;
    for (const auto& name : names) {
        size_t distance = EditDistance(typed, name);
        // A prefix ("--dry" for "--dry-run") counts as near.
        if (name.size() > typed.size() && typed.size() >= 3 && name.rfind(typed, 0) == 0)
            distance = 1;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = name;
        }
    }
    return best;
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string>& names) {
    const std::string near = ClosestName(typed, names);
    return near.empty() ? "" : Tr("; did you mean {1}?", {near});
}
