// SPDX-License-Identifier: MIT
// Writes or reads a history in a process of its own, driven by tests.
#include "HistoryReader.h"
#include "HistoryWriter.h"
#include "OtherUser.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr qint64 lastTime = std::numeric_limits<qint64>::max();

void say(const QString &line)
{
    std::fprintf(stdout, "%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

HistorySeries series(int number)
{
    return {QStringLiteral("processdata://Pump/C/%1/n").arg(number), HistoryType::Int64, {}, {}, 0};
}

// Numbers from FIRST on, in ten series, until it is killed: "stored N" promises all up to N, but for
// those that were dropped.
int write(const QString &database, qint64 first, qint64 queueLimit)
{
    HistorySettings settings;
    settings.database = database;
    settings.commitEvery = 1;
    settings.reportEvery = 1;
    if (queueLimit > 0) {
        settings.queueLimit = queueLimit;
    }
    HistoryWriter writer(settings);
    QObject::connect(
        &writer, &HistoryWriter::troubleChanged, &writer,
        [](const QString &reason) { say(QStringLiteral("trouble: ") + reason); },
        Qt::DirectConnection);
    QObject::connect(
        &writer, &HistoryWriter::samplesDropped, &writer,
        [](qint64 count) { say(QStringLiteral("dropped %1").arg(count)); }, Qt::DirectConnection);
    if (!writer.open()) {
        say(writer.errorText());
        return 1;
    }
    for (qint64 number = first;; ++number) {
        for (int i = 0; i < 10; ++i) {
            writer.append(writer.addSeries(series(i)), {number, number});
        }
        if (number % 20 == 0) {
            if (writer.flush()) {
                say(QStringLiteral("stored %1").arg(number));
            } else {
                QThread::msleep(100); // else it fills its memory faster than anything comes back
            }
        }
    }
}

// What is missing must be what the events say.
int audit(const QString &database)
{
    HistoryReader reader;
    QVector<HistoryEvent> events;
    HistoryInfo info;
    if (!reader.open(database) || !reader.events(0, lastTime, &events) || !reader.info(&info)) {
        say(reader.errorText());
        return 1;
    }
    qint64 missing = 0;
    qint64 unexplained = 0;
    qint64 last = 0;
    for (const HistorySeriesInfo &one : qAsConst(info.series)) {
        last = std::max(last, one.last);
    }
    for (const HistorySeriesInfo &one : qAsConst(info.series)) {
        qint64 next = 0;
        const auto skipTo = [&](qint64 time) {
            for (; next < time; ++next) {
                ++missing;
                unexplained
                    += std::none_of(events.cbegin(), events.cend(), [&](const HistoryEvent &event) {
                           return event.kind == HistoryEvent::Kind::SamplesDropped
                               && next >= event.from && next <= event.until;
                       });
            }
        };
        reader.samples(one.series.selector, 0, lastTime, [&](const HistorySample &sample) {
            skipTo(sample.time);
            next = sample.time + 1;
            return true;
        });
        skipTo(last + 1);
    }
    say(QStringLiteral("last %1 missing %2 dropped %3 unexplained %4")
            .arg(last)
            .arg(missing)
            .arg(info.dropped)
            .arg(unexplained));
    return 0;
}

// Reads all numbers of one series after the other: they must be without holes, and grow. A commit may
// come between a number's turn in one series and in the next, which then ends one earlier.
int read(const QString &database, int rounds)
{
    HistoryReader reader;
    qint64 before = 0;
    for (int round = 0; round < rounds; ++round) {
        qint64 count = 0;
        bool whole = true;
        if ((round == 0 && !reader.open(database))
            || !reader.samples(
                series(round % 10).selector, -lastTime, lastTime, [&](const HistorySample &sample) {
                    whole = whole && sample.time == count && sample.value == QVariant(count);
                    ++count;
                    return true;
                })) {
            say(reader.errorText());
            return 1;
        }
        if (!whole || count < before - 1) {
            say(QStringLiteral("numbers are missing: %1 after %2").arg(count).arg(before));
            return 1;
        }
        before = count;
    }
    say(QStringLiteral("read %1").arg(before));
    return 0;
}

int open(const QString &database, bool writing)
{
    HistorySettings settings;
    settings.database = database;
    HistoryWriter writer(settings);
    HistoryReader reader;
    const bool done = writing ? writer.open() : reader.open(database);
    say(done ? QStringLiteral("open") : writing ? writer.errorText() : reader.errorText());
    return done ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == QLatin1String("--user")) {
        if (!becomeUser(arguments.value(1))) {
            say(QStringLiteral("cannot become user ") + arguments.value(1));
            return 2;
        }
        arguments = arguments.mid(2);
    }
    const QString command = arguments.value(0);
    if (command == QLatin1String("write")) {
        return write(arguments.value(1), arguments.value(2).toLongLong(),
                     arguments.value(3).toLongLong());
    }
    if (command == QLatin1String("read")) {
        return read(arguments.value(1), arguments.value(2).toInt());
    }
    if (command == QLatin1String("audit")) {
        return audit(arguments.value(1));
    }
    return open(arguments.value(1), command == QLatin1String("open-writing"));
}
