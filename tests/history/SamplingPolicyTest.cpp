// SPDX-License-Identifier: MIT
// Which values become samples.
#include "SamplingPolicy.h"

#include <QtTest>

#include <limits>

using Definitions = ProcessDataDefinitions;

class SamplingPolicyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstValueIsASample()
    {
        SamplingPolicy policy;
        QVERIFY(policy.take({}, Definitions::NoValue, 0));
        QVERIFY(!policy.take({}, Definitions::NoValue, 1));
    }

    void withoutADeadbandEveryChangeIsASample_data();
    void withoutADeadbandEveryChangeIsASample();

    void aChangeOfTheDeadbandItselfIsNotASample()
    {
        SamplingPolicy policy({0, 0.5, 0});
        QVERIFY(policy.take(10.0, Definitions::NoError, 0));
        QVERIFY(!policy.take(10.5, Definitions::NoError, 1));
        QVERIFY(!policy.take(9.5, Definitions::NoError, 2));
        QVERIFY(policy.take(10.75, Definitions::NoError, 3));
    }

    void aSlowDriftAddsUpToASample()
    {
        SamplingPolicy policy({0, 1, 0});
        QVERIFY(policy.take(0.0, Definitions::NoError, 0));
        QVERIFY(!policy.take(0.75, Definitions::NoError, 1));
        QVERIFY(policy.take(1.5, Definitions::NoError, 2));
    }

    void integersBeyondTheDoublesAreComparedExactly()
    {
        SamplingPolicy policy({0, 0, 0});
        const qint64 large = std::numeric_limits<qint64>::max();
        QVERIFY(policy.take(large, Definitions::NoError, 0));
        QVERIFY(policy.take(large - 1, Definitions::NoError, 1));
        QVERIFY(policy.take(std::numeric_limits<qint64>::min(), Definitions::NoError, 2));
        QVERIFY(policy.take(std::numeric_limits<quint64>::max(), Definitions::NoError, 3));
        QVERIFY(policy.take(std::numeric_limits<quint64>::max() - 1, Definitions::NoError, 4));
    }

    void aChangedErrorTypeIsASampleWithinEveryToo()
    {
        SamplingPolicy policy({1000, 100, 0});
        QVERIFY(policy.take(1.0, Definitions::NoError, 0));
        QVERIFY(!policy.take(500.0, Definitions::NoError, 1));
        QVERIFY(policy.take(1.0, Definitions::SourceLost, 2));
        QVERIFY(!policy.take(1.0, Definitions::SourceLost, 3));
    }

    void samplesAreNeverCloserThanEvery()
    {
        SamplingPolicy policy({100, 0, 0});
        QVERIFY(policy.take(1, Definitions::NoError, 0));
        QVERIFY(!policy.take(2, Definitions::NoError, 99));
        QVERIFY(policy.take(3, Definitions::NoError, 100));
    }

    void aSteadyValueIsASampleAtLeastEvery()
    {
        SamplingPolicy policy({10, 5, 60});
        QVERIFY(policy.take(1, Definitions::NoError, 0));
        QVERIFY(!policy.take(1, Definitions::NoError, 59));
        QVERIFY(policy.take(1, Definitions::NoError, 60));
        QVERIFY(!policy.take(1, Definitions::NoError, 119));
    }

    void aClockThatIsSetBackDoesNotSilenceASelector()
    {
        SamplingPolicy policy({100, 0, 0});
        QVERIFY(policy.take(1, Definitions::NoError, 1'000'000));
        QVERIFY(policy.take(1, Definitions::NoError, 10));
        QVERIFY(!policy.take(2, Definitions::NoError, 20));
    }

    void notANumberIsASampleOnce()
    {
        SamplingPolicy policy({0, 1, 0});
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double infinity = std::numeric_limits<double>::infinity();
        QVERIFY(policy.take(1.0, Definitions::NoError, 0));
        QVERIFY(policy.take(nan, Definitions::NoError, 1));
        QVERIFY(!policy.take(nan, Definitions::NoError, 2));
        QVERIFY(policy.take(infinity, Definitions::NoError, 3));
        QVERIFY(!policy.take(infinity, Definitions::NoError, 4));
        QVERIFY(policy.take(-infinity, Definitions::NoError, 5));
        QVERIFY(policy.take(0.0, Definitions::NoError, 6));
    }

    void afterAResetTheNextValueIsASample()
    {
        SamplingPolicy policy({100, 5, 0});
        QVERIFY(policy.take(1, Definitions::NoError, 0));
        policy.reset();
        QVERIFY(policy.take(1, Definitions::NoError, 1));
    }

    void aShareOfAnImpossibleRangeIsNoDeadband()
    {
        const double infinity = std::numeric_limits<double>::infinity();
        QCOMPARE(SamplingRule::ofRange(0.5, -50, 150), 1.0);
        QCOMPARE(SamplingRule::ofRange(10, 5, 5), 0.0);
        QCOMPARE(SamplingRule::ofRange(10, 5, 4), 0.0);
        QCOMPARE(SamplingRule::ofRange(10, 0, infinity), 0.0);
        QCOMPARE(SamplingRule::ofRange(10, std::numeric_limits<double>::quiet_NaN(), 1), 0.0);
    }
};

void SamplingPolicyTest::withoutADeadbandEveryChangeIsASample_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");
    QTest::newRow("bool") << QVariant(false) << QVariant(true);
    QTest::newRow("the sign of zero") << QVariant(0.0) << QVariant(-0.0);
    QTest::newRow("the least step") << QVariant(0.1) << QVariant(0.1 + 1.4e-17);
    QTest::newRow("text") << QVariant("a") << QVariant("b");
    QTest::newRow("bytes") << QVariant(QByteArray("a")) << QVariant(QByteArray("b"));
    QTest::newRow("another type") << QVariant(1) << QVariant(1U);
    QTest::newRow("no value any more") << QVariant(1) << QVariant();
}

void SamplingPolicyTest::withoutADeadbandEveryChangeIsASample()
{
    QFETCH(QVariant, before);
    QFETCH(QVariant, after);
    SamplingPolicy policy;
    QVERIFY(policy.take(before, Definitions::NoError, 0));
    QVERIFY(!policy.take(before, Definitions::NoError, 1));
    QVERIFY(policy.take(after, Definitions::NoError, 2));
}

QTEST_GUILESS_MAIN(SamplingPolicyTest)

#include "SamplingPolicyTest.moc"
