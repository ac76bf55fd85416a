// SPDX-License-Identifier: MIT
// Titles and places of charts.
#include "PlotFrame.h"

#include "TimeAxis.h"

#include <QHash>
#include <QSet>
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

QString decoded(const QString &segments)
{
    return QUrl::fromPercentEncoding(segments.toUtf8());
}

// A label stands before the end of its URL.
QString withLabel(const WatchTarget &target, const QString &end)
{
    return target.name == decoded(segmentsOf(target).constLast())
        ? end
        : QStringLiteral("%1 (%2)").arg(target.name, end);
}

QString longerTitle(const WatchTarget &target, int count)
{
    const QStringList segments = segmentsOf(target);
    const QStringList end = segments.mid(std::max(0, segments.size() - count));
    return withLabel(target, decoded(end.join(QLatin1Char('/'))));
}

// With the segment at a distance from the last one; an ellipsis stands for those between.
QString titleWith(const WatchTarget &target, int distance)
{
    const QStringList segments = segmentsOf(target);
    const QString between = distance == 1 ? QStringLiteral("/") : QStringLiteral("/\u2026/");
    return withLabel(target,
                     decoded(segments.value(segments.size() - 1 - distance)) + between
                         + decoded(segments.last()));
}

// The shortest titles with one further segment for targets of one name; empty when no segment
// alone tells all of them apart.
QStringList shortTitles(const QVector<WatchTarget> &alike, int longest)
{
    for (int distance = 1; distance < longest; ++distance) {
        QStringList titles;
        for (const WatchTarget &target : alike) {
            titles.append(titleWith(target, distance));
        }
        if (QSet<QString>(titles.begin(), titles.end()).size() == alike.size()) {
            return titles;
        }
    }
    return {};
}

// By their places: the short titles of the targets whose name others have, too.
QHash<int, QString> tellingTitles(const QVector<WatchTarget> &targets, int longest)
{
    QHash<QString, QVector<int>> places;
    for (int i = 0; i < targets.size(); ++i) {
        places[targets.at(i).name].append(i);
    }
    QHash<int, QString> telling;
    for (const QVector<int> &ofName : qAsConst(places)) {
        QVector<WatchTarget> alike;
        for (const int place : ofName) {
            alike.append(targets.at(place));
        }
        const QStringList titles = alike.size() > 1 ? shortTitles(alike, longest) : QStringList();
        for (int i = 0; i < titles.size(); ++i) {
            telling.insert(ofName.at(i), titles.at(i));
        }
    }
    return telling;
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
    const QHash<int, QString> telling = tellingTitles(targets, longest);
    tellApart(titles, [&](int i) { return telling.value(i, titles.at(i)); });
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
