// SPDX-License-Identifier: MIT
// Titles and places of charts.
#include "PlotFrame.h"

#include "TimeAxis.h"

#include <QHash>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int usualPanel = 10; // lines
constexpr int smallestPanel = 3;

QStringList segmentsOf(const WatchTarget &target)
{
    const QString place
        = target.url.section(QLatin1Char('?'), 0, 0).section(QStringLiteral("://"), -1);
    return place.split(QLatin1Char('/'));
}

// The last segments of a URL, decoded; a label stands before them.
QString longerTitle(const WatchTarget &target, int count)
{
    const QStringList segments = segmentsOf(target);
    const QString end
        = QUrl::fromPercentEncoding(QStringList(segments.mid(std::max(0, segments.size() - count)))
                                        .join(QLatin1Char('/'))
                                        .toUtf8());
    const QString last = QUrl::fromPercentEncoding(segments.last().toUtf8());
    return target.name == last ? end : QStringLiteral("%1 (%2)").arg(target.name, end);
}

QHash<QString, int> countsOf(const QStringList &titles)
{
    QHash<QString, int> counts;
    for (const QString &title : titles) {
        ++counts[title];
    }
    return counts;
}

// Replaces the titles that stand more than once. Returns whether there were any.
template <typename Longer> bool tellApart(QStringList &titles, Longer longer)
{
    const QHash<QString, int> counts = countsOf(titles);
    bool any = false;
    for (int i = 0; i < titles.size(); ++i) {
        if (counts.value(titles.at(i)) > 1) {
            titles[i] = longer(i);
            any = true;
        }
    }
    return any;
}

} // namespace

QStringList plotTitles(const QVector<WatchTarget> &targets)
{
    QStringList titles;
    int longest = 0;
    for (const WatchTarget &target : targets) {
        titles.append(target.name);
        longest = std::max(longest, segmentsOf(target).size());
    }
    for (int count = 2; count <= longest; ++count) {
        if (!tellApart(titles, [&](int i) { return longerTitle(targets.at(i), count); })) {
            return titles;
        }
    }
    tellApart(titles, [&](int i) { return QStringLiteral("%1 #%2").arg(titles.at(i)).arg(i + 1); });
    return titles;
}

QStringList plotFrame(const QVector<PlotPanel> &panels, const QVector<qint64> &times,
                      const PlotArea &area)
{
    QStringList frame;
    const QString axis = times.isEmpty() ? QString() : timeAxis(times, area.width, area.dots);
    if (area.lines == 0) {
        for (const PlotPanel &panel : panels) {
            frame += panel.render(area.width, usualPanel, area.dots);
        }
        return axis.isEmpty() ? frame : frame << axis;
    }
    const int room = area.lines - (axis.isEmpty() ? 0 : 1);
    const bool all = panels.size() * smallestPanel <= room;
    const int shown = all ? panels.size() : std::max(0, (room - 1) / smallestPanel);
    const int height
        = std::clamp((all ? room : room - 1) / std::max(1, shown), smallestPanel, usualPanel * 2);
    for (int i = 0; i < shown; ++i) {
        frame += panels.at(i).render(area.width, height, area.dots);
    }
    if (shown > 0 && !axis.isEmpty()) {
        frame += axis;
    }
    if (!all) {
        frame += QStringLiteral("%1 of %2 charts do not fit; make the window higher")
                     .arg(panels.size() - shown)
                     .arg(panels.size())
                     .left(std::max(1, area.width));
    }
    return frame;
}
