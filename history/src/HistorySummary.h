// SPDX-License-Identifier: MIT
// Count, sum, least and greatest of samples, and the lengths of time that summaries are kept for.
#ifndef HISTORYSUMMARY_H
#define HISTORYSUMMARY_H

#include <QtGlobal>

#include <array>

/// What is known of a run of samples without the samples. Least and greatest are ranks.
struct HistorySummary
{
    qint64 count = 0; ///< of samples
    qint64 numbers = 0; ///< of those that the rest is taken from
    double sum = 0;
    qint64 least = 0;
    qint64 leastTime = 0;
    qint64 greatest = 0;
    qint64 greatestTime = 0;

    void addNumber(qint64 rank, double number, qint64 time)
    {
        add(HistorySummary{0, 1, number, rank, time, rank, time});
    }

    /// Of equal values the earlier one stays, when runs are added in the order of time.
    void add(const HistorySummary &other)
    {
        if (other.numbers > 0 && (numbers == 0 || other.least < least)) {
            least = other.least;
            leastTime = other.leastTime;
        }
        if (other.numbers > 0 && (numbers == 0 || other.greatest > greatest)) {
            greatest = other.greatest;
            greatestTime = other.greatestTime;
        }
        count += other.count;
        numbers += other.numbers;
        sum += other.sum;
    }
};

namespace HistoryLevels {

constexpr qint64 second = 1'000'000'000;
/// Each divides the next, and people's intervals are multiples of one.
constexpr std::array<qint64, 5> width{10 * second, 60 * second, 600 * second, 3600 * second,
                                      86400 * second};
constexpr int count = int(width.size());
/// Fewer samples are as quickly read as their summary, which would be a waste of space.
constexpr qint64 fewest = 32;

/// Rounds down, before 1970 too.
constexpr qint64 piece(qint64 time, qint64 width)
{
    return time / width - (time % width < 0 ? 1 : 0);
}

} // namespace HistoryLevels

#endif
