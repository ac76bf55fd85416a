// SPDX-License-Identifier: MIT
// A lost source is reported by whoever reads it, a living one never.
#include "SourceWatch.h"
#include "WatchedSource.h"

#include <QtTest>

namespace {
QVector<QSharedPointer<SourceWatch>> reported;
}

class SourceWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        reported.clear();
        SourceWatch::setHandler(
            [](const QSharedPointer<SourceWatch> &source) { reported += source; });
    }
    void cleanup() { SourceWatch::setHandler(nullptr); }

    void aSourceThatNobodyReadsIsNotReported();
    void manyReadsAreReportedOnce();
    void aReadAfterTheWatchHasEndedIsReportedAgain();
    void aReadDuringTheWatchKeepsIt();
    void withoutAHandlerALaterReadIsReported();
};

void SourceWatchTest::aSourceThatNobodyReadsIsNotReported()
{
    const auto source = watchedSource();
    QCOMPARE(source->bufferName, QString("/processdata.Pump_Controller_1.7"));
    QVERIFY(!source->takeRead());
    QCOMPARE(reported.size(), 0);
}

void SourceWatchTest::manyReadsAreReportedOnce()
{
    const auto source = watchedSource();
    for (int i = 0; i < 100; ++i) {
        source->noteLostRead();
    }
    QCOMPARE(reported.size(), 1);
    QCOMPARE(reported.first(), source);
    QVERIFY(source->takeRead());
    QVERIFY(!source->takeRead());
}

void SourceWatchTest::aReadAfterTheWatchHasEndedIsReportedAgain()
{
    const auto source = watchedSource();
    source->noteLostRead();
    QVERIFY(source->takeRead());
    QVERIFY(!source->takeRead());
    source->noteLostRead();
    QCOMPARE(reported.size(), 2);
    source->forgetReads();
    source->noteLostRead();
    QCOMPARE(reported.size(), 3);
}

void SourceWatchTest::aReadDuringTheWatchKeepsIt()
{
    const auto source = watchedSource();
    source->noteLostRead();
    for (int i = 0; i < 3; ++i) {
        QVERIFY(source->takeRead());
        source->noteLostRead();
    }
    QVERIFY(source->takeRead());
    QVERIFY(!source->takeRead());
    QCOMPARE(reported.size(), 1);
}

void SourceWatchTest::withoutAHandlerALaterReadIsReported()
{
    const auto source = watchedSource();
    SourceWatch::setHandler(nullptr);
    source->noteLostRead();
    init();
    source->noteLostRead();
    QCOMPARE(reported.size(), 1);
}

QTEST_GUILESS_MAIN(SourceWatchTest)
#include "SourceWatchTest.moc"
