// SPDX-License-Identifier: MIT
// A reader without an event loop learns of its publisher's death, and nothing else ever again.
#include "BusTestMain.h"
#include "Rounds.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTest>

#include <algorithm>
#include <csignal>

class FreshnessTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules("processdata.*=false"); }
    void everyReadAfterItsPublishersDeathSaysSoAndKeepsTheLastValue();
};

namespace {

const QJsonObject pump
    = description({leaf("speed", "float64"), leaf("count", "int64"), leaf("running", "bool"),
                   leaf("name", "string", {{"capacity", 32}})});
const QVector<QString> paths{"speed", "count", "running", "name"};
constexpr int readsAfterDeath = 1000;

// Every leaf as it must read: its last value, and whether its source is lost.
QByteArray wrongValues(const QVector<ProcessValue> &values, const QVector<QVariant> &expected,
                       const QVector<qint64> &times, ProcessDataDefinitions::ErrorTypes errorType)
{
    for (int i = 0; i < expected.size(); ++i) {
        const ProcessValue &value = values.at(i);
        if (value.getValue() != expected.at(i) || value.getErrorType() != errorType
            || value.getTimestamp() != times.at(i)) {
            return paths.at(i).toUtf8() + " reads as " + value.getValue().toByteArray()
                + " with error type " + QByteArray::number(value.getErrorType());
        }
    }
    return {};
}

} // namespace

void FreshnessTest::everyReadAfterItsPublishersDeathSaysSoAndKeepsTheLastValue()
{
    const int rounds = roundsOr(20);
    QVector<QString> urls;
    for (const QString &path : paths) {
        urls += selectorUrl(module, path);
    }
    QVector<qint64> microseconds;
    for (int round = 1; round <= rounds; ++round) {
        PublisherProcess publisher;
        VERIFY_COMMAND(publisher.serve(module, pump));
        const QVector<QVariant> last{round + 0.5, qint64(round), round % 2 == 0,
                                     QString("round %1").arg(round)};
        for (int i = 0; i < paths.size(); ++i) {
            VERIFY_COMMAND(publisher.publish(paths.at(i), QJsonValue::fromVariant(last.at(i))));
        }
        SelectorHandlerProcessValue handler(urls, nullptr);
        QVector<qint64> times;
        for (const ProcessValue &value : handler.getValues()) {
            times += value.getTimestamp();
        }
        const QByteArray before
            = wrongValues(handler.getValues(), last, times, ProcessDataDefinitions::NoError);
        QVERIFY2(before.isEmpty(), before);

        // From here on this thread only reads: no event is delivered, no child is waited for.
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(::kill(pid_t(publisher.process().pid()), SIGKILL), 0);
        const QDeadlineTimer limit(20000);
        while (handler.getValue(0).getErrorType() != ProcessDataDefinitions::SourceLost
               && !limit.hasExpired()) { }
        microseconds += timer.nsecsElapsed() / 1000;
        for (int i = 0; i < readsAfterDeath; ++i) {
            const QByteArray after
                = wrongValues(handler.getValues(), last, times, ProcessDataDefinitions::SourceLost);
            QVERIFY2(after.isEmpty(), after);
        }
    }
    std::sort(microseconds.begin(), microseconds.end());
    qInfo("%d deaths; from SIGKILL to the first read that says so: median %lld us, longest %lld us",
          rounds, microseconds.at(rounds / 2), microseconds.last());
}

BUS_TEST_MAIN(FreshnessTest)
#include "FreshnessTest.moc"
