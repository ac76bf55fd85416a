// SPDX-License-Identifier: MIT
// Threads that read, write and read properties while the list is replaced and its sources change.
#include "InProcessBus.h"
#include "InProcessSource.h"
#include "Rounds.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QScopedPointer>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

constexpr int leafCount = 8;
constexpr int step = 1000; // leaf i only ever holds i, i + step, i + 2 * step, …
constexpr int enough = 20; // rounds that each thread must have done meanwhile

/// Two sources that come and go while a thread of their own publishes, as processes would.
class Sources
{
public:
    explicit Sources(const QString &module)
        : module(module)
    {
        restart(0);
        restart(1);
    }

    /// The old one is gone before the new one comes up, as after a crash.
    void restart(int number)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        sources[number].reset();
        sources[number].reset(new InProcessSource(module, QString::number(number + 1), leafCount));
    }

    void announce(int number)
    {
        InProcessBus::announce(module, "InProcess", QString::number(number + 1));
    }

    void publish(int round)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const int leaf = round % leafCount;
        for (const QScopedPointer<InProcessSource> &source : sources) {
            source->publish(leaf, leaf + step * (round % 100));
        }
    }

    QVector<QString> urls(int number) const { return sources[number]->urls(); }

private:
    const QString module;
    std::mutex mutex; // of the test's own two threads that use the publishers
    QScopedPointer<InProcessSource> sources[2];
};

QVector<QString> shortList(const Sources &sources)
{
    return {sources.urls(0).at(0), sources.urls(1).at(1), sources.urls(0).at(2)};
}

QVector<QString> longList(const Sources &sources)
{
    return {sources.urls(0).at(0),
            sources.urls(1).at(1),
            sources.urls(0).at(2),
            sources.urls(1).at(3),
            sources.urls(0).at(4) + "?deactivated",
            sources.urls(0).at(5)};
}

constexpr int shortSize = 3;
constexpr int longSize = 6;

bool isWhole(int index, const ProcessValue &value)
{
    return value.getErrorType() == ProcessDataDefinitions::NoValue
        || std::fmod(value.getValue().toDouble(), step) == index;
}

/// What threads do with the handler, each its own part; counts what cannot be.
class Users
{
public:
    explicit Users(SelectorHandlerProcessValue &handler, Sources &sources)
        : handler(handler)
        , sources(sources)
    {
        start(&Users::readValues);
        start(&Users::readOneByOne);
        start(&Users::readProperties);
        start(&Users::write);
        start(&Users::publish);
    }
    ~Users() { stop(); }
    Users(const Users &) = delete;
    Users &operator=(const Users &) = delete;

    bool haveWorked() const
    {
        return std::all_of(std::begin(rounds), std::end(rounds),
                           [](const std::atomic<int> &count) { return count >= enough; });
    }

    void stop()
    {
        stopped = true;
        for (std::thread &thread : threads) {
            thread.join();
        }
        threads.clear();
    }

    int roundsDone() const { return std::accumulate(std::begin(rounds), std::end(rounds), 0); }
    int brokenReads() const { return broken; }

private:
    void start(void (Users::*work)(int))
    {
        std::atomic<int> *const count = &rounds[threads.size()];
        threads.emplace_back([this, work, count] {
            for (int round = 0; !stopped; ++round) {
                (this->*work)(round);
                ++*count;
            }
        });
    }

    void expect(bool condition) { broken += condition ? 0 : 1; }

    void readValues(int)
    {
        const QVector<ProcessValue> values = handler.getValues();
        expect(values.size() == shortSize || values.size() == longSize);
        for (int i = 0; i < values.size(); ++i) {
            expect(isWhole(i, values.at(i)));
        }
        expect(handler.getValues(0, shortSize).size() == shortSize);
    }

    void readOneByOne(int round)
    {
        const int index = round % shortSize;
        expect(isWhole(index, handler.getValue(index)));
    }

    void readProperties(int round)
    {
        const int index = round % shortSize;
        const QVariant unit = handler.getProperty("unit", index);
        expect(!unit.isValid() || unit == QVariant("1/min"));
        const int units = handler.getProperties("unit").size();
        expect(units == shortSize || units == longSize);
        expect(handler.getPropertyAsJsonString(index).startsWith('{'));
        const int texts = handler.getPropertiesAsJsonString().size();
        expect(texts == shortSize || texts == longSize);
    }

    void write(int round)
    {
        const int index = round % shortSize;
        const auto value = [round](int leaf) {
            return ProcessValue(QVariant(double(leaf + step * (round % 100))));
        };
        handler.setValue(value(index), index);
        handler.setValues({value(0), value(1), value(2)}, 0);
    }

    void publish(int round) { sources.publish(round); }

    SelectorHandlerProcessValue &handler;
    Sources &sources;
    std::atomic<bool> stopped{false};
    std::atomic<int> broken{0};
    std::atomic<int> rounds[5] = {};
    std::vector<std::thread> threads;
};

// Empty, or what went wrong.
QByteArray useTheHandler(int wanted)
{
    Sources sources(QString("Races%1").arg(::getpid()));
    SelectorHandlerProcessValue handler(shortList(sources), nullptr);
    QSignalSpy changes(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
    Users users(handler, sources);
    for (int round = 0; round < wanted || (!users.haveWorked() && round < 1000000); ++round) {
        const int number = round / 2 % 2;
        switch (round % 4) {
        case 0:
            handler.setSelectorUrls(longList(sources));
            break;
        case 2:
            handler.setSelectorUrls(shortList(sources));
            break;
        default:
            sources.restart(number);
            sources.announce(number);
            break;
        }
        QCoreApplication::processEvents(); // brings the answers to announcements
    }
    const bool worked = users.haveWorked();
    users.stop();
    std::printf("%d changes of list or sources, %d signals, beside %d rounds of 5 threads\n",
                wanted, int(changes.size()), users.roundsDone());
    if (!worked || changes.size() < wanted / 4) {
        return "not everything was done";
    }
    return users.brokenReads() == 0 ? QByteArray()
                                    : QByteArray::number(users.brokenReads()) + " reads cannot be";
}

// What looks for races must report this one.
int countWithoutLock()
{
    int counter = 0;
    const auto count = [&counter] {
        for (int i = 0; i < 1000; ++i) {
            ++counter;
        }
    };
    std::thread first(count);
    std::thread second(count);
    first.join();
    second.join();
    return counter > 0 ? 0 : 1;
}

} // namespace

class RacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threadsUseTheHandlerWhileItsListAndItsSourcesChange()
    {
        const QByteArray problem = useTheHandler(roundsOr(100));
        QVERIFY2(problem.isEmpty(), problem);
    }
};

// QtTest watches its tests in a thread of its own, which ThreadSanitizer does not understand: under
// it, the same things are done without QtTest.
int main(int argc, char **argv)
{
    const QByteArray deed = argc == 2 ? argv[1] : "";
    if (deed == "countWithoutLock") {
        return countWithoutLock();
    }
    QLoggingCategory::setFilterRules("*.warning=false"); // sources come and go: all of it is told
    QCoreApplication application(argc, argv);
    if (deed == "useTheHandler") {
        const QByteArray problem = useTheHandler(roundsOr(100));
        std::printf("%s\n", problem.isEmpty() ? "all good" : problem.constData());
        return problem.isEmpty() ? 0 : 1;
    }
    RacesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RacesTest.moc"
