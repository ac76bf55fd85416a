// SPDX-License-Identifier: MIT
// Labels the time axis.
#include "TimeAxis.h"

#include "PlotPanel.h"

#include <algorithm>

namespace {

constexpr int labelDistance = 16; // columns between two labels
constexpr double nanosecondsPerSecond = 1e9;
constexpr double minute = 60; // seconds
constexpr double hour = 60 * minute;

QString lengthText(double seconds)
{
    if (seconds < minute * 2) {
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', seconds < 10 ? 1 : 0);
    }
    return seconds < hour * 2 ? QStringLiteral("%1 min").arg(seconds / minute, 0, 'f', 0)
                              : QStringLiteral("%1 h").arg(seconds / hour, 0, 'f', 0);
}

} // namespace

QString timeAxis(const QVector<qint64> &times, int width, bool dots)
{
    const int first = PlotPanel::axisWidth;
    const int samplesOfColumn = dots ? 2 : 1;
    const int last = std::max(first, width - 1);
    const QString tick(dots ? QChar(0x2575) : QChar(QLatin1Char('|')));
    QString line(last + 1, QLatin1Char(' '));
    for (int column = last; column >= first; column -= labelDistance) {
        const int sample = times.size() - 1 - (last - column) * samplesOfColumn;
        if (sample < 0) {
            break;
        }
        const double age = double(times.last() - times.at(sample)) / nanosecondsPerSecond;
        const QString label
            = (column == last ? QStringLiteral("now") : QStringLiteral("-") + lengthText(age))
            + tick;
        if (column + 1 - label.size() >= 0) {
            line.replace(column + 1 - label.size(), label.size(), label);
        }
    }
    return line;
}
