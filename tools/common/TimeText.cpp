// SPDX-License-Identifier: MIT
// The forms of times, and local clocks that are put forward and back.
#include "TimeText.h"

#include "Duration.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
constexpr qint64 secondsPerDay = 86400;
constexpr int firstYear = 1970;
constexpr int lastYear = 2261; // the last whole one that nanoseconds reach

// The calendar and the clock on the wall, wherever that is.
struct WallTime
{
    QDate date;
    bool hasTime = false;
    qint64 nanoseconds = 0; // since midnight, as clocks show it
    QString offset; // "Z", "+01:00"; empty: local time
};

bool refuse(const QString &text, const QString &problem, QString &error)
{
    error = QStringLiteral("\"%1\" %2").arg(text, problem);
    return false;
}

QString shownOffset(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("%1%2:%3")
        .arg(seconds < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

bool readClock(const QString &clock, qint64 &nanoseconds)
{
    const QString seconds = clock.section(QLatin1Char(':'), 2, 2);
    const int hour = clock.section(QLatin1Char(':'), 0, 0).toInt();
    const int minute = clock.section(QLatin1Char(':'), 1, 1).toInt();
    const int second = seconds.section(QLatin1Char('.'), 0, 0).toInt();
    const QString fraction
        = seconds.section(QLatin1Char('.'), 1).leftJustified(9, QLatin1Char('0'));
    nanoseconds
        = ((hour * 60 + minute) * 60 + second) * nanosecondsPerSecond + fraction.toLongLong();
    return hour < 24 && minute < 60 && second < 60;
}

bool readWallTime(const QString &text, const QDate &today, WallTime &wall, QString &error)
{
    static const QString clock = QStringLiteral("(\\d{1,2}:\\d\\d(?::\\d\\d(?:\\.\\d{1,9})?)?)");
    static const QRegularExpression form(
        QStringLiteral("^(?:(today|yesterday|\\d{4}-\\d\\d-\\d\\d)(?:(?: +|T)%1)?|%1)"
                       " ?(Z|[+-](?:0\\d|1[0-4]):[0-5]\\d)?$")
            .arg(clock),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    const QString day = match.captured(1).toLower();
    wall.offset = match.captured(4).toUpper();
    const QString time = match.captured(2) + match.captured(3);
    wall.hasTime = !time.isEmpty();
    if (!match.hasMatch()
        || (!wall.offset.isEmpty() && (!wall.hasTime || !day.contains(QLatin1Char('-'))))) {
        return refuse(text,
                      QStringLiteral("is not a time; expected for instance now, today, yesterday "
                                     "22:00, 22:00, -15min, 2026-11-21, 2026-11-21 22:00:05.250 or "
                                     "2026-11-21T22:00:05+01:00"),
                      error);
    }
    wall.date = day.contains(QLatin1Char('-')) ? QDate::fromString(day, Qt::ISODate)
        : day == QLatin1String("yesterday")    ? today.addDays(-1)
                                               : today;
    if (!wall.date.isValid()) {
        return refuse(text, QStringLiteral("is not a time: there is no such day"), error);
    }
    if (wall.hasTime && !readClock(time, wall.nanoseconds)) {
        return refuse(text, QStringLiteral("is not a time: a day ends at 23:59:59.999999999"),
                      error);
    }
    if (wall.date.year() < firstYear || wall.date.year() > lastYear) {
        return refuse(text,
                      QStringLiteral("is out of reach; expected a time of the years 1970 to 2261"),
                      error);
    }
    return true;
}

// The same clock in UTC.
qint64 secondsAsUtc(const WallTime &wall)
{
    return QDate(firstYear, 1, 1).daysTo(wall.date) * secondsPerDay
        + wall.nanoseconds / nanosecondsPerSecond;
}

int localOffset(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds).offsetFromUtc();
}

// When local clocks showed this: usually once; twice or never when they are put back or forward.
QVector<qint64> momentsOf(qint64 secondsShown)
{
    QVector<qint64> moments;
    for (const qint64 near : {secondsShown - secondsPerDay, secondsShown + secondsPerDay}) {
        const qint64 moment = secondsShown - localOffset(near);
        if (moment + localOffset(moment) == secondsShown && !moments.contains(moment)) {
            moments.append(moment);
        }
    }
    std::sort(moments.begin(), moments.end());
    return moments;
}

bool readLocal(const QString &text, const WallTime &wall, qint64 &seconds, QString &error)
{
    const QVector<qint64> moments = momentsOf(secondsAsUtc(wall));
    if (moments.size() == 1 || (!moments.isEmpty() && !wall.hasTime)) {
        seconds = moments.first();
        return true;
    }
    if (!wall.hasTime) { // the clocks are put forward at midnight
        seconds = wall.date.startOfDay().toSecsSinceEpoch();
        return true;
    }
    if (moments.isEmpty()) {
        return refuse(
            text,
            QStringLiteral("never was: the clocks were put forward over it; expected a time "
                           "before or after that, or one with its offset from UTC"),
            error);
    }
    return refuse(
        text,
        QStringLiteral("was twice, as the clocks were put back; expected a date, a time and "
                       "the offset from UTC, which was %1 first and then %2")
            .arg(shownOffset(localOffset(moments.first())),
                 shownOffset(localOffset(moments.last()))),
        error);
}

qint64 secondsOfOffset(const QString &offset)
{
    const qint64 seconds = offset.midRef(1, 2).toInt() * 3600 + offset.midRef(4, 2).toInt() * 60;
    return offset.startsWith(QLatin1Char('-')) ? -seconds : seconds;
}

bool readAgo(const QString &text, qint64 now, qint64 &time, QString &error)
{
    const auto ago = millisecondsFromText(text.mid(1), std::nan(""));
    const qint64 longest = now / nanosecondsPerMillisecond;
    if (!ago || !(*ago >= 0) || *ago > static_cast<double>(longest)) {
        return refuse(
            text,
            QStringLiteral("is not a time; expected for instance -500ms, -30s, -15min, -2h "
                           "or -7d"),
            error);
    }
    time = now - std::llround(*ago * nanosecondsPerMillisecond);
    return true;
}

} // namespace

bool timeFromText(const QString &text, qint64 now, qint64 &time, QString &error)
{
    if (text.compare(QLatin1String("now"), Qt::CaseInsensitive) == 0) {
        time = now;
        return true;
    }
    if (text.startsWith(QLatin1Char('-'))) {
        return readAgo(text, now, time, error);
    }
    const QDate today = QDateTime::fromMSecsSinceEpoch(now / nanosecondsPerMillisecond).date();
    WallTime wall;
    if (!readWallTime(text, today, wall, error)) {
        return false;
    }
    qint64 seconds = 0;
    if (wall.offset.isEmpty()) {
        if (!readLocal(text, wall, seconds, error)) {
            return false;
        }
    } else {
        seconds = secondsAsUtc(wall) - secondsOfOffset(wall.offset);
    }
    time = seconds * nanosecondsPerSecond + wall.nanoseconds % nanosecondsPerSecond;
    return true;
}
