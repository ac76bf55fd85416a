// SPDX-License-Identifier: MIT
// A service is asked about while its lost sources go on being read, and no longer.
#include "LossWatch.h"
#include "WatchedSource.h"

#include <QtTest>

namespace {

const char service[] = "com.orvalis.ProcessData.Pump";

int reports = 0;

// As a reading thread leaves it: reported, and read again since.
QSharedPointer<SourceWatch> sourceThatIsReadOn()
{
    const auto source = watchedSource();
    source->noteLostRead();
    source->noteLostRead();
    return source;
}
}

class LossWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        reports = 0;
        SourceWatch::setHandler([](const QSharedPointer<SourceWatch> &) { ++reports; });
        watch.reset(new LossWatch(nullptr));
        QObject::connect(
            watch.data(), &LossWatch::due, this,
            [this](const QString &name, const QVector<QSharedPointer<SourceWatch>> &sources) {
                asked.append({name, sources});
            });
        asked.clear();
    }
    void cleanup() { SourceWatch::setHandler(nullptr); }

    void whoReadsOnIsAskedForOnceAndForgottenWhenNobodyReads();
    void aSourceThatNobodyHoldsIsNotAskedFor();
    void whatIsForgottenIsReportedByItsNextRead();

private:
    bool isIdle() const { return watch->findChildren<QTimer *>().isEmpty(); }

    QScopedPointer<LossWatch> watch;
    QVector<QPair<QString, QVector<QSharedPointer<SourceWatch>>>> asked;
};

void LossWatchTest::whoReadsOnIsAskedForOnceAndForgottenWhenNobodyReads()
{
    const auto read = sourceThatIsReadOn();
    const auto ended = sourceThatIsReadOn();
    ended->end();
    watch->add(service, read);
    watch->add(service, ended);

    QTRY_COMPARE_WITH_TIMEOUT(asked.size(), 1, 60000);
    QCOMPARE(asked.first().first, QString(service));
    QCOMPARE(asked.first().second, QVector<QSharedPointer<SourceWatch>>{read});
    QVERIFY(!isIdle());

    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 60000); // nobody has read it since
    QCOMPARE(asked.size(), 1);
    reports = 0;
    read->noteLostRead();
    QCOMPARE(reports, 1);
}

void LossWatchTest::aSourceThatNobodyHoldsIsNotAskedFor()
{
    const auto source = sourceThatIsReadOn();
    source->end();
    watch->add(service, source);
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 60000);
    QCOMPARE(asked.size(), 0);
}

void LossWatchTest::whatIsForgottenIsReportedByItsNextRead()
{
    const auto source = sourceThatIsReadOn();
    watch->add(service, source);
    watch->clear();
    QVERIFY(isIdle());
    reports = 0;
    source->noteLostRead();
    QCOMPARE(reports, 1);
}

QTEST_GUILESS_MAIN(LossWatchTest)
#include "LossWatchTest.moc"
