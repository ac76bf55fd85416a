// SPDX-License-Identifier: MIT
// The order of asynchronous fetches, and how many may be under way at a time.
#include "FetchQueue.h"

#include <QtTest>

namespace {

using Fetch = FetchQueue::Fetch;

QStringList keysOf(const QVector<Fetch> &fetches)
{
    QStringList keys;
    for (const Fetch &fetch : fetches) {
        keys += fetch->call.service() + fetch->call.arguments().at(0).toString();
    }
    return keys;
}

DescriptionReply answer(const QString &text)
{
    DescriptionReply reply;
    reply.value = text;
    return reply;
}
}

class FetchQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { queue = FetchQueue(); }
    void theyStartInTheirOrder();
    void anInstanceIsAskedForAgainWhenItsAnswerIsThere();
    void whatWasAbandonedIsNeverSent();
    void oneServiceLeavesRoomForOthers();
    void noMoreAreUnderWayThanTheBusGrantsAnswers();
    void anAnswerIsReportedFromTheEventLoop();
    void anAbandonedFetchReportsNothing();

private:
    Fetch add(const QString &service, const QString &instance)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(service, "/o", "i.i", "Get");
        call << instance << QString();
        const Fetch fetch = Fetch::create(call, 1000, this, [this](const DescriptionReply &reply) {
            reports += reply.value.toString();
        });
        queue.add(fetch);
        return fetch;
    }

    FetchQueue queue;
    QStringList reports;
};

void FetchQueueTest::theyStartInTheirOrder()
{
    add("a", "1");
    add("b", "1");
    add("a", "2");

    QCOMPARE(keysOf(queue.takeNext()), QStringList({"a1", "b1", "a2"}));
    QCOMPARE(keysOf(queue.takeNext()), QStringList());
}

void FetchQueueTest::anInstanceIsAskedForAgainWhenItsAnswerIsThere()
{
    const Fetch first = add("a", "1");
    add("a", "1");
    add("a", "2");
    QCOMPARE(keysOf(queue.takeNext()), QStringList({"a1", "a2"}));
    QCOMPARE(keysOf(queue.takeNext()), QStringList());

    queue.ended(*first);

    QCOMPARE(keysOf(queue.takeNext()), QStringList({"a1"}));
}

void FetchQueueTest::whatWasAbandonedIsNeverSent()
{
    const Fetch first = add("a", "1");
    QCOMPARE(queue.takeNext().size(), 1);
    for (int i = 0; i < 100; ++i) {
        add("a", "1")->abandon();
    }
    const Fetch last = add("a", "1");
    first->abandon(); // under way all the same
    QCOMPARE(queue.takeNext().size(), 0);

    queue.ended(*first);

    QCOMPARE(queue.takeNext(), QVector<Fetch>({last}));
    queue.ended(*last);
    QCOMPARE(queue.takeNext().size(), 0);
}

void FetchQueueTest::oneServiceLeavesRoomForOthers()
{
    QVector<Fetch> fetches;
    for (int i = 0; i < 100; ++i) {
        fetches += add("hung", QString::number(i));
    }
    add("other", "1");

    const QVector<Fetch> next = queue.takeNext();

    QCOMPARE(next.size(), FetchQueue::mostOfOneService + 1);
    QCOMPARE(keysOf(next).last(), QString("other1"));
    queue.ended(*fetches.first());
    QCOMPARE(queue.takeNext(), fetches.mid(FetchQueue::mostOfOneService, 1));
}

void FetchQueueTest::noMoreAreUnderWayThanTheBusGrantsAnswers()
{
    QVector<Fetch> fetches;
    for (int i = 0; i < 200; ++i) {
        fetches += add(QString::number(i), "1");
    }

    QCOMPARE(queue.takeNext(), fetches.mid(0, FetchQueue::mostUnderWay));
    queue.ended(*fetches.at(3));
    queue.ended(*fetches.at(5));
    QCOMPARE(queue.takeNext(), fetches.mid(FetchQueue::mostUnderWay, 2));
}

void FetchQueueTest::anAnswerIsReportedFromTheEventLoop()
{
    reports.clear();
    const Fetch fetch = add("a", "1");
    fetch->report(answer("first"));
    QCOMPARE(reports, QStringList());
    QTRY_COMPARE(reports, QStringList({"first"}));
    add("a", "2")->report(answer("second"));
    QTRY_COMPARE(reports, QStringList({"first", "second"}));
}

void FetchQueueTest::anAbandonedFetchReportsNothing()
{
    reports.clear();
    const Fetch fetch = add("a", "1");
    fetch->abandon();
    fetch->report(answer("abandoned"));
    add("a", "2")->report(answer("wanted"));
    QTRY_COMPARE(reports, QStringList({"wanted"}));
}

QTEST_GUILESS_MAIN(FetchQueueTest)

#include "FetchQueueTest.moc"
