// SPDX-License-Identifier: MIT
// Who owns which service: what listeners hear, and in which order.
#include "ServiceTable.h"

#include <QtTest>

#include <array>

namespace {

const QString service("com.orvalis.ProcessData.Pump");
const QString path("/com/orvalis/ProcessData/Controller");

class Recorder : public ServiceListener
{
public:
    explicit Recorder(const QString &service = ::service, const QString &path = ::path)
        : ServiceListener(service, path)
    {
    }

    void hear(const ServiceEvent &event) override
    {
        if (event.kind == ServiceEvent::Kind::Signal) {
            heard += event.member + " " + event.argument;
            order += this;
            return;
        }
        if (event.kind == ServiceEvent::Kind::AnswersAgain) {
            heard += "answers again " + event.argument;
            return;
        }
        lastOwner = event.argument;
        static const QStringList names{"found", "appeared", "found again"};
        heard += names.at(static_cast<int>(event.kind));
    }

    QStringList heard;
    QString lastOwner;
    static inline QVector<Recorder *> order; // in which signals were received
};

bool hasOwner(const ServiceTable &table)
{
    return !table.ownerOf(service).isEmpty();
}
}

class BusServiceTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheFirstListenerOfAServiceMakesItsOwnerBeAskedFor();
    void aLateListenerHearsAtOnceThatTheServiceIsPresent();
    void signalsBeforeTheOwnerIsKnownAreKeptAndThenJudgedByTheirSender();
    void anAnnouncedOwnerIsNewerThanALateAnswer();
    void aServiceTakenForAbsentIsFoundAgain();
    void afterTheBusWasLostAServiceIsFoundAgainOrAppears();
    void signalsReachEachListenerOfThePathOnce();
    void whoAskedForWhatASignalNamesHearsItBeforeTheOthers_data();
    void whoAskedForWhatASignalNamesHearsItBeforeTheOthers();
    void aRemovedListenerHearsNothing();
    void whatIsExpectedOfAnInstanceIsKeptForItsNextFetch();
    void oneProbeIsUnderWayToAHungService();
    void whoIsOwedSomethingHearsOnceThatTheServiceAnswersAgain();
    void aServiceThatChangesHandsIsNotHungAndItsOldProbeCountsForNothing();
    void whatAnEarlierOwnerOwedIsForgotten();
    void aServiceWithoutOwnerCannotHang();
};

void BusServiceTableTest::onlyTheFirstListenerOfAServiceMakesItsOwnerBeAskedFor()
{
    ServiceTable table;
    Recorder listener;
    Recorder otherPath(service, "/other");
    Recorder otherService("other.service");

    QVERIFY(table.addListener(&listener));
    QVERIFY(!table.addListener(&otherPath));
    QVERIFY(table.addListener(&otherService));
    QVERIFY(!table.isKnown(service));
    QVERIFY(!hasOwner(table));
}

void BusServiceTableTest::aLateListenerHearsAtOnceThatTheServiceIsPresent()
{
    ServiceTable table;
    Recorder early;
    Recorder late;
    table.addListener(&early);
    table.ownerAnswered(service, ":1.7");

    table.addListener(&late);

    QCOMPARE(early.heard, QStringList{"found"});
    QCOMPARE(late.heard, QStringList{"found"});
}

void BusServiceTableTest::signalsBeforeTheOwnerIsKnownAreKeptAndThenJudgedByTheirSender()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.signalReceived({":1.7", path, "Changed", "1"});
    table.signalReceived({":1.8", path, "Changed", "2"});
    QCOMPARE(listener.heard, QStringList());

    table.ownerAnswered(service, ":1.7");
    table.signalReceived({":1.8", path, "Changed", "3"});
    table.signalReceived({":1.7", path, "Changed", "4"});

    QCOMPARE(listener.heard, (QStringList{"found", "Changed 1", "Changed 4"}));
}

void BusServiceTableTest::anAnnouncedOwnerIsNewerThanALateAnswer()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);

    table.ownerChanged(service, ":1.9");
    table.ownerAnswered(service, QString());
    table.signalReceived({":1.9", path, "Changed", "1"});

    QVERIFY(hasOwner(table));
    QCOMPARE(listener.heard, (QStringList{"appeared", "Changed 1"}));
}

void BusServiceTableTest::aServiceTakenForAbsentIsFoundAgain()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.setGivenUp(service);

    table.ownerAnswered(service, ":1.7");

    QCOMPARE(listener.heard, QStringList{"found again"});
}

void BusServiceTableTest::afterTheBusWasLostAServiceIsFoundAgainOrAppears()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.ownerAnswered(service, ":1.7");
    listener.heard.clear();

    table.busLost();
    QVERIFY(table.isKnown(service));
    QVERIFY(!hasOwner(table));
    table.signalReceived({":1.7", path, "Changed", "from the old bus"});
    table.busRestored();
    QVERIFY(!table.isKnown(service));
    table.ownerAnswered(service, ":1.2");
    table.busLost();
    table.busRestored();
    table.ownerChanged(service, ":1.3");

    QCOMPARE(listener.heard, (QStringList{"found again", "appeared"}));
    QCOMPARE(listener.lastOwner, QString(":1.3"));
}

void BusServiceTableTest::signalsReachEachListenerOfThePathOnce()
{
    ServiceTable table;
    Recorder first;
    Recorder second;
    Recorder otherPath(service, "/other");
    Recorder otherService("other.service");
    table.addListener(&first);
    table.addListener(&second);
    table.addListener(&otherPath);
    table.addListener(&otherService);
    table.ownerAnswered(service, ":1.7");
    table.ownerAnswered("other.service", ":1.8");

    table.signalReceived({":1.7", path, "Changed", "1"});

    QCOMPARE(first.heard, (QStringList{"found", "Changed 1"}));
    QCOMPARE(second.heard, (QStringList{"found", "Changed 1"}));
    QCOMPARE(otherPath.heard, QStringList{"found"});
    QCOMPARE(otherService.heard, QStringList{"found"});
}

void BusServiceTableTest::whoAskedForWhatASignalNamesHearsItBeforeTheOthers_data()
{
    QTest::addColumn<int>("asking");
    QTest::newRow("the first listener") << 0;
    QTest::newRow("one in between") << 1;
    QTest::newRow("the last listener") << 2;
}

void BusServiceTableTest::whoAskedForWhatASignalNamesHearsItBeforeTheOthers()
{
    QFETCH(int, asking);
    ServiceTable table;
    std::array<Recorder, 3> listeners;
    for (Recorder &listener : listeners) {
        table.addListener(&listener);
        table.noteAsked(&listener, "another instance");
    }
    table.noteAsked(&listeners.at(asking), "1");
    table.ownerAnswered(service, ":1.7");
    Recorder::order.clear();

    table.signalReceived({":1.7", path, "Changed", "1"});

    QCOMPARE(Recorder::order.size(), 3);
    QCOMPARE(Recorder::order.first(), &listeners.at(asking));
    for (const Recorder &listener : listeners) {
        QCOMPARE(listener.heard, (QStringList{"found", "Changed 1"}));
    }
}

void BusServiceTableTest::aRemovedListenerHearsNothing()
{
    ServiceTable table;
    Recorder gone;
    Recorder stays;
    table.addListener(&gone);
    table.addListener(&stays);
    table.removeListener(&gone);

    table.ownerAnswered(service, ":1.7");
    table.signalReceived({":1.7", path, "Changed", "1"});

    QCOMPARE(gone.heard, QStringList());
    QCOMPARE(stays.heard, (QStringList{"found", "Changed 1"}));
}

void BusServiceTableTest::whatIsExpectedOfAnInstanceIsKeptForItsNextFetch()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    const auto description = PreparedDescriptionPointer::create();

    QVERIFY(table.noteAsked(&listener, "2").isNull());
    QVERIFY(table.expect(&listener, "1", description).isNull());
    QCOMPARE(table.noteAsked(&listener, "1"), description);
    QVERIFY(table.noteAsked(&listener, "2").isNull());
    QCOMPARE(table.expect(&listener, "1", {}), description);
    QVERIFY(table.noteAsked(&listener, "1").isNull());
    QCOMPARE(table.askedBy(&listener), (QStringList{"1", "2"}));
    table.expect(&listener, "2", description);
    QCOMPARE(table.removeListener(&listener),
             (QVector<PreparedDescriptionPointer>{{}, description}));
}

void BusServiceTableTest::oneProbeIsUnderWayToAHungService()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.ownerAnswered(service, ":1.7");

    const quint64 probe = table.setHung(service);
    QVERIFY(probe != 0);
    QCOMPARE(table.setHung(service), quint64(0));
    QVERIFY(table.isHung(service));
    QVERIFY(hasOwner(table));
    table.noteOwed(path, &listener, "1");
    table.probeEnded(service, probe, true);

    QVERIFY(!table.isHung(service));
    QCOMPARE(listener.heard, (QStringList{"found", "answers again 1"}));
}

void BusServiceTableTest::whoIsOwedSomethingHearsOnceThatTheServiceAnswersAgain()
{
    ServiceTable table;
    Recorder listener;
    Recorder owedNothing;
    Recorder gone;
    table.addListener(&listener);
    table.addListener(&owedNothing);
    table.addListener(&gone);
    table.ownerAnswered(service, ":1.7");
    table.noteAsked(&owedNothing, "1");
    const quint64 probe = table.setHung(service);
    table.noteOwed(path, &listener, "1");
    table.noteOwed(path, &listener, "2");
    table.noteOwed(path, &listener, "1");
    table.removeListener(&gone);
    table.noteOwed(path, &gone, "1");
    table.noteOwed("/nowhere", &listener, "3");

    table.probeEnded(service, probe, true);
    table.probeEnded(service, table.setHung(service), true);

    QCOMPARE(listener.heard, (QStringList{"found", "answers again 1", "answers again 2"}));
    QCOMPARE(owedNothing.heard, QStringList{"found"});
    QCOMPARE(gone.heard, QStringList{"found"});
}

void BusServiceTableTest::aServiceThatChangesHandsIsNotHungAndItsOldProbeCountsForNothing()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.ownerAnswered(service, ":1.7");
    const quint64 old = table.setHung(service);

    table.ownerChanged(service, ":1.8");
    QVERIFY(!table.isHung(service));
    const quint64 fresh = table.setHung(service);
    table.noteOwed(path, &listener, "1");
    table.probeEnded(service, old, true);
    QVERIFY(table.isHung(service));
    table.probeEnded(service, fresh, false);

    QVERIFY(!table.isHung(service));
    QCOMPARE(listener.heard, (QStringList{"found", "appeared"}));
}

void BusServiceTableTest::whatAnEarlierOwnerOwedIsForgotten()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.ownerAnswered(service, ":1.7");
    table.setHung(service);
    table.noteOwed(path, &listener, "1");

    table.ownerChanged(service, ":1.8");
    const quint64 probe = table.setHung(service);
    table.noteOwed(path, &listener, "2");
    table.probeEnded(service, probe, true);

    QCOMPARE(listener.heard, (QStringList{"found", "appeared", "answers again 2"}));
}

void BusServiceTableTest::aServiceWithoutOwnerCannotHang()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(&listener);
    table.ownerAnswered(service, QString());

    QCOMPARE(table.setHung(service), quint64(0));
    QVERIFY(!table.isHung(service));
}

QTEST_GUILESS_MAIN(BusServiceTableTest)

#include "BusServiceTableTest.moc"
