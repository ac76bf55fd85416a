// SPDX-License-Identifier: MIT
// Whose answer goes out next, who waits for what was not read, and who is refused.
#include "AnswerQueue.h"

#include <QtTest>

#include <dbus/dbus.h>

namespace {

ServedCall callOf(const char *sender)
{
    const WireMessage message = Wire::call("com.orvalis.Test", "/x", "com.orvalis.Test", "Call");
    dbus_message_set_sender(message.get(), sender);
    return ServedCall(message, [](const WireMessage &, const BusAnswer &) {});
}

AnswerQueue::SizeOf answersOf(qint64 size)
{
    return [size](const ServedCall &) { return size; };
}

constexpr qint64 small = 100;
constexpr qint64 large = 14 << 20;

// Who is answered, in turn, as long as somebody may be.
QStringList answerAll(AnswerQueue &queue, qint64 size)
{
    QStringList order;
    while (const auto call = queue.takeNext(answersOf(size))) {
        order += call->sender();
        queue.sent(call->sender(), size);
    }
    return order;
}
}

class AnswerQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCallerWithManyCallsDoesNotKeepOthersWaiting();
    void aLargeAnswerWaitsUntilTheOneBeforeWasRead();
    void smallAnswersDoNotWaitForOneAnother();
    void whatAllCallersLeaveUnreadIsBounded();
    void callsOfOneCallerAreBounded();
    void callsOfAllAreBounded();
    void bytesOfWaitingCallsAreBounded();
    void aCallerThatIsGoneLeavesNothing();
    void aCallerThatReadsNothingGetsFewErrors();
    void asManyCallersAreAskedAsTheBusAllows();
};

void AnswerQueueTest::aCallerWithManyCallsDoesNotKeepOthersWaiting()
{
    AnswerQueue queue;
    for (const char *sender : {":1", ":1", ":1", ":2"}) {
        QVERIFY(queue.add(callOf(sender), small));
    }
    QStringList order = answerAll(queue, small);
    QCOMPARE(order.size(), 4);
    QCOMPARE(order.mid(2), (QStringList{":1", ":1"}));

    QVERIFY(queue.add(callOf(":1"), small));
    QVERIFY(queue.add(callOf(":3"), small)); // never served
    order = answerAll(queue, small);
    QCOMPARE(order, (QStringList{":3", ":1"}));
}

void AnswerQueueTest::aLargeAnswerWaitsUntilTheOneBeforeWasRead()
{
    AnswerQueue queue;
    QVERIFY(queue.add(callOf(":1"), small));
    QVERIFY(queue.add(callOf(":1"), small));

    QCOMPARE(answerAll(queue, large), QStringList{":1"});
    QCOMPARE(queue.takeCallersToAsk(), QStringList{":1"});
    QCOMPARE(queue.takeCallersToAsk(), QStringList()); // once
    QCOMPARE(answerAll(queue, large), QStringList());
    queue.answered(":1");

    QCOMPARE(answerAll(queue, large), QStringList{":1"});
}

void AnswerQueueTest::smallAnswersDoNotWaitForOneAnother()
{
    AnswerQueue queue;
    for (int i = 0; i < AnswerQueue::mostOfOneCaller; ++i) {
        QVERIFY(queue.add(callOf(":1"), small));
    }
    QCOMPARE(answerAll(queue, small).size(), AnswerQueue::mostOfOneCaller);
    QCOMPARE(queue.takeCallersToAsk(), QStringList());
}

void AnswerQueueTest::whatAllCallersLeaveUnreadIsBounded()
{
    AnswerQueue queue;
    for (int i = 0; i < 20; ++i) {
        QVERIFY(queue.add(callOf(qPrintable(QString(":%1").arg(i + 1))), small));
    }
    const int served = answerAll(queue, large).size();
    QCOMPARE(served, static_cast<int>(AnswerQueue::mostUnread / large));
    const QStringList asked = queue.takeCallersToAsk();
    QCOMPARE(asked.size(), served);
    queue.answered(asked.first());
    QCOMPARE(answerAll(queue, large).size(), 1);
}

void AnswerQueueTest::callsOfOneCallerAreBounded()
{
    AnswerQueue queue;
    for (int i = 0; i < AnswerQueue::mostOfOneCaller; ++i) {
        QVERIFY(queue.add(callOf(":1"), small));
    }
    QVERIFY(!queue.add(callOf(":1"), small));
    QVERIFY(queue.add(callOf(":2"), small));
}

void AnswerQueueTest::callsOfAllAreBounded()
{
    AnswerQueue queue;
    for (int i = 0; i < AnswerQueue::mostOfAll; ++i) {
        QVERIFY(queue.add(callOf(qPrintable(QString(":%1").arg(i / 32 + 1))), small));
    }
    QVERIFY(!queue.add(callOf(":9999"), small));
    QCOMPARE(queue.waiting(), AnswerQueue::mostOfAll);
}

void AnswerQueueTest::bytesOfWaitingCallsAreBounded()
{
    AnswerQueue queue;
    QVERIFY(queue.add(callOf(":1"), AnswerQueue::mostWaitingBytes));
    QVERIFY(!queue.add(callOf(":2"), 1));
    QCOMPARE(answerAll(queue, small), QStringList{":1"});
    QVERIFY(queue.add(callOf(":2"), 1));
}

void AnswerQueueTest::aCallerThatIsGoneLeavesNothing()
{
    AnswerQueue queue;
    for (int i = 0; i < AnswerQueue::mostOfOneCaller; ++i) {
        QVERIFY(queue.add(callOf(":1"), AnswerQueue::mostWaitingBytes / 64));
    }
    QCOMPARE(answerAll(queue, large).size(), 1);
    QCOMPARE(queue.takeCallersToAsk(), QStringList{":1"});
    queue.gone(":1");
    queue.answered(":1"); // of no effect

    QCOMPARE(queue.waiting(), 0);
    QVERIFY(queue.add(callOf(":2"), AnswerQueue::mostWaitingBytes));
    QCOMPARE(answerAll(queue, AnswerQueue::mostUnread), QStringList{":2"});
}

void AnswerQueueTest::aCallerThatReadsNothingGetsFewErrors()
{
    AnswerQueue queue;
    int errors = 0;
    while (errors < 100000 && queue.mayRefuse(":1")) {
        ++errors;
    }
    QCOMPARE(errors, 128);
    QVERIFY(queue.mayRefuse(":2"));
}

void AnswerQueueTest::asManyCallersAreAskedAsTheBusAllows()
{
    AnswerQueue queue;
    for (int i = 0; i < AnswerQueue::mostAsked + 1; ++i) {
        queue.sent(QString(":%1").arg(i), AnswerQueue::askFrom);
    }
    const QStringList asked = queue.takeCallersToAsk();
    QCOMPARE(asked.size(), AnswerQueue::mostAsked);
    QCOMPARE(queue.takeCallersToAsk(), QStringList());
    queue.answered(asked.first());
    QCOMPARE(queue.takeCallersToAsk().size(), 1);
}

QTEST_GUILESS_MAIN(AnswerQueueTest)
#include "AnswerQueueTest.moc"
