// SPDX-License-Identifier: MIT
// Counts the slips between two words.
#include "NearMiss.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <vector>

namespace {

constexpr int lettersPerSlip = 3;
constexpr int mostSlips = 8; // beyond, nobody recognises the word
constexpr int mostMisses = 3;

// How many slips make one word of the other; a number above the limit when there are more. A cell
// further from the diagonal than the limit would need more slips than that, so it is left out.
int slipsBetween(const QString &typed, const QString &known, int limit)
{
    const int tooMany = limit + 1;
    if (std::abs(typed.size() - known.size()) > limit) {
        return tooMany;
    }
    std::vector<int> beforeLast(known.size() + 1, tooMany);
    std::vector<int> last(known.size() + 1);
    std::vector<int> row(known.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    int leastBefore = 0;
    for (int i = 1; i <= typed.size(); ++i) {
        const int begin = std::max(1, i - limit);
        const int end = std::min(known.size(), i + limit);
        row[begin - 1] = begin == 1 ? i : tooMany;
        int least = row[begin - 1];
        for (int j = begin; j <= end; ++j) {
            const bool same = typed.at(i - 1) == known.at(j - 1);
            const int above = j == i + limit ? tooMany : last[j];
            row[j] = std::min({last[j - 1] + (same ? 0 : 1), above + 1, row[j - 1] + 1});
            const bool swapped = i > 1 && j > 1 && typed.at(i - 1) == known.at(j - 2)
                && typed.at(i - 2) == known.at(j - 1);
            row[j] = swapped ? std::min(row[j], beforeLast[j - 2] + 1) : row[j];
            least = std::min(least, row[j]);
        }
        if (std::min(least, leastBefore) > limit) { // a swap reaches back by two rows
            return tooMany;
        }
        leastBefore = least;
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return last.back();
}

} // namespace

QStringList nearMisses(const QString &typed, const QStringList &known)
{
    const QString folded = typed.toCaseFolded();
    int best = std::min(mostSlips, typed.size() / lettersPerSlip);
    QStringList found;
    for (const QString &word : known) {
        const int slips = slipsBetween(folded, word.toCaseFolded(), best);
        if (slips > best || word == typed || word.isEmpty()) {
            continue;
        }
        if (slips < best) {
            best = slips;
            found.clear();
        }
        if (found.size() < mostMisses && !found.contains(word)) {
            found.append(word);
        }
    }
    return found;
}

QString didYouMean(const QString &typed, const QStringList &known)
{
    const QStringList misses = nearMisses(typed, known);
    if (misses.isEmpty()) {
        return {};
    }
    const QString quote(QLatin1Char('"'));
    return QStringLiteral("did you mean ") + quote + misses.join(QStringLiteral("\" or \"")) + quote
        + QLatin1Char('?');
}
