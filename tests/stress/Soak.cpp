// SPDX-License-Identifier: MIT
// Does at random to a system what can happen to one, and looks all the time at what a client sees.
#include "Footprint.h"
#include "SoakClient.h"
#include "SoakDeeds.h"
#include "SoakWorld.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace {

constexpr int timeLimit = 30000; // milliseconds until all is quiet; it takes two seconds
constexpr int deedsBetweenRests = 12;
constexpr int restsBetweenMeasurements = 5;
constexpr int restsToWarmUp = 10;

std::atomic<qint64> warnings{0};

// Counted, not shown: in such a system everything is warned of.
void countWarning(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg || qstrcmp(context.category, "qt.core.qobject.connect") == 0) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    ++warnings;
}

void require(const QString &problem)
{
    if (!problem.isEmpty()) {
        throw std::runtime_error(problem.toStdString());
    }
}

/// Lets everything come to rest and checks what must hold then.
class Rests
{
public:
    Rests(SoakWorld &world, SoakClient &client, SoakDeeds &deeds)
        : world(world)
        , client(client)
        , deeds(deeds)
    {
    }

    void rest()
    {
        deeds.bringEverythingUp();
        QString problem;
        const bool settled = QTest::qWaitFor(
            [this, &problem] {
                problem = client.unsettled();
                return problem.isEmpty();
            },
            timeLimit);
        require(settled ? QString() : "after " + QString::number(timeLimit) + " ms " + problem);
        require(client.wrong());
        const QStringList buffers = world.buffers();
        require(buffers.size() == SoakWorld::sourceCount
                    ? QString()
                    : "left in shared memory: " + buffers.join(' '));
        ++count;
        if (count % restsBetweenMeasurements == 0) {
            measure();
        }
    }

    int count = 0;
    Footprint warm;
    Footprint last;

private:
    // Everything as it was at the first measurement, so that nothing else makes a difference.
    void measure()
    {
        deeds.dropOtherClients();
        for (int source = 0; source < SoakWorld::sourceCount; ++source) {
            world.quit(source);
            world.resetLayout(source);
            world.start(source);
            world.publish(source);
        }
        client.apply(client.fullList());
        require(QTest::qWaitFor([this] { return client.unsettled().isEmpty(); }, timeLimit)
                    ? QString()
                    : "before a measurement: " + client.unsettled());
        last = Footprint::now();
        if (count <= restsToWarmUp) {
            warm = last;
        }
        require(QString::fromLatin1(last.growthSince(warm)));
    }

    SoakWorld &world;
    SoakClient &client;
    SoakDeeds &deeds;
};

// A client in a process of its own, which is killed while it writes.
int writeUntilKilled(const QString &url)
{
    SelectorHandlerProcessValue handler({url}, nullptr);
    for (qint64 i = 0;; ++i) {
        handler.setValue(ProcessValue(QVariant(double(-i % 1000))), 0);
        if (i == 0) {
            std::printf("writing\n");
            std::fflush(stdout);
        }
    }
}

void soakUntil(const QDeadlineTimer &end, SoakWorld &world, SoakClient &client, SoakDeeds &deeds,
               Rests &rests)
{
    do {
        for (int i = 0; i < deedsBetweenRests; ++i) {
            deeds.doNext();
            require(client.wrong());
        }
        rests.rest();
    } while (!end.hasExpired());
    deeds.endEverything();
    const QStringList left = world.buffers();
    require(left.isEmpty() ? QString() : "left in shared memory at the end: " + left.join(' '));
}

int soak(int seconds, quint32 seed)
{
    std::printf("soak: %d s, seed %u\n", seconds, seed);
    std::fflush(stdout);
    QElapsedTimer timer;
    timer.start();
    SoakWorld world;
    world.startBus();
    SoakClient client(world);
    SoakDeeds deeds(world, client, seed);
    Rests rests(world, client, deeds);
    QByteArray failure;
    try {
        soakUntil(QDeadlineTimer(qint64(seconds) * 1000), world, client, deeds, rests);
    } catch (const std::runtime_error &error) {
        failure = error.what();
    }
    std::printf("%s\n%d times at rest, %lld values read, %lld signals, %lld warnings\n"
                "first measured: %s\nlast measured: %s\n",
                qPrintable(deeds.counts()), rests.count, client.reads(), client.signalsSeen(),
                warnings.load(), rests.warm.text().constData(), rests.last.text().constData());
    if (!failure.isEmpty()) {
        std::printf("FAILED after %lld s: %s\nrepeat with seed %u; the last deeds:\n%s\n",
                    timer.elapsed() / 1000, failure.constData(), seed,
                    qPrintable(deeds.lastDeeds().join('\n')));
        return EXIT_FAILURE;
    }
    std::printf("soak: no failures in %lld s\n", timer.elapsed() / 1000);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    Footprint::prepare(argv);
    QCoreApplication application(argc, argv);
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "300");
    qInstallMessageHandler(countWarning);
    if (argc == 3 && qstrcmp(argv[1], "writer") == 0) {
        return writeUntilKilled(argv[2]);
    }
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 0;
    if (seconds <= 0 || argc > 3) {
        std::fputs("usage: stress_soak SECONDS [SEED]\n", stderr);
        return 2;
    }
    const quint32 seed
        = argc > 2 ? quint32(std::strtoul(argv[2], nullptr, 10)) : quint32(std::time(nullptr));
    try {
        return soak(seconds, seed);
    } catch (const std::runtime_error &error) {
        std::printf("FAILED before anything was done: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
