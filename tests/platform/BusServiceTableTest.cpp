// SPDX-License-Identifier: MIT
// Who owns which service: what listeners hear, and in which order.
#include "ServiceTable.h"

#include <QtTest>

#include <array>

namespace {

class Recorder : public ServiceListener
{
public:
    void servicePresent(Presence presence, const QString &owner) override
    {
        lastOwner = owner;
        static const QStringList names{"found", "appeared", "found again"};
        heard += names.at(static_cast<int>(presence));
    }
    void serviceAnswersAgain() override { heard += "answers again"; }
    void signalReceived(const QString &member, const QString &argument) override
    {
        heard += member + " " + argument;
        order += this;
    }
    bool hasAskedFor(const QString &argument) const override { return argument == asked; }

    QStringList heard;
    QString lastOwner;
    QString asked;
    static inline QVector<Recorder *> order; // in which signals were received
};

const QString service("com.orvalis.ProcessData.Pump");
const QString path("/com/orvalis/ProcessData/Controller");
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
    void oneProbeIsUnderWayToAHungService();
    void aServiceThatChangesHandsIsNotHungAndItsOldProbeCountsForNothing();
    void aServiceWithoutOwnerCannotHang();
};

void BusServiceTableTest::onlyTheFirstListenerOfAServiceMakesItsOwnerBeAskedFor()
{
    ServiceTable table;
    Recorder listener;

    QVERIFY(table.addListener(service, path, &listener));
    QVERIFY(!table.addListener(service, "/other", &listener));
    QVERIFY(table.addListener("other.service", path, &listener));
    QVERIFY(!table.isKnown(service));
    QVERIFY(!table.hasOwner(service));
}

void BusServiceTableTest::aLateListenerHearsAtOnceThatTheServiceIsPresent()
{
    ServiceTable table;
    Recorder early;
    Recorder late;
    table.addListener(service, path, &early);
    table.ownerAnswered(service, ":1.7");

    table.addListener(service, path, &late);

    QCOMPARE(early.heard, QStringList{"found"});
    QCOMPARE(late.heard, QStringList{"found"});
}

void BusServiceTableTest::signalsBeforeTheOwnerIsKnownAreKeptAndThenJudgedByTheirSender()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.signalReceived(":1.7", path, "Changed", "1");
    table.signalReceived(":1.8", path, "Changed", "2");
    QCOMPARE(listener.heard, QStringList());

    table.ownerAnswered(service, ":1.7");
    table.signalReceived(":1.8", path, "Changed", "3");
    table.signalReceived(":1.7", path, "Changed", "4");

    QCOMPARE(listener.heard, (QStringList{"found", "Changed 1", "Changed 4"}));
}

void BusServiceTableTest::anAnnouncedOwnerIsNewerThanALateAnswer()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);

    table.ownerChanged(service, ":1.9");
    table.ownerAnswered(service, QString());
    table.signalReceived(":1.9", path, "Changed", "1");

    QVERIFY(table.hasOwner(service));
    QCOMPARE(listener.heard, (QStringList{"appeared", "Changed 1"}));
}

void BusServiceTableTest::aServiceTakenForAbsentIsFoundAgain()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.setGivenUp(service);

    table.ownerAnswered(service, ":1.7");

    QCOMPARE(listener.heard, QStringList{"found again"});
}

void BusServiceTableTest::afterTheBusWasLostAServiceIsFoundAgainOrAppears()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.ownerAnswered(service, ":1.7");
    listener.heard.clear();

    table.busLost();
    QVERIFY(table.isKnown(service));
    QVERIFY(!table.hasOwner(service));
    table.signalReceived(":1.7", path, "Changed", "from the old bus");
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
    Recorder otherPath;
    Recorder otherService;
    table.addListener(service, path, &first);
    table.addListener(service, path, &second);
    table.addListener(service, "/other", &otherPath);
    table.addListener("other.service", path, &otherService);
    table.ownerAnswered(service, ":1.7");
    table.ownerAnswered("other.service", ":1.8");

    table.signalReceived(":1.7", path, "Changed", "1");

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
        table.addListener(service, path, &listener);
        listener.asked = "another instance";
    }
    listeners.at(asking).asked = "1";
    table.ownerAnswered(service, ":1.7");
    Recorder::order.clear();

    table.signalReceived(":1.7", path, "Changed", "1");

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
    table.addListener(service, path, &gone);
    table.addListener(service, path, &stays);
    table.removeListener(path, &gone);

    table.ownerAnswered(service, ":1.7");
    table.signalReceived(":1.7", path, "Changed", "1");

    QCOMPARE(gone.heard, QStringList());
    QCOMPARE(stays.heard, (QStringList{"found", "Changed 1"}));
}

void BusServiceTableTest::oneProbeIsUnderWayToAHungService()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.ownerAnswered(service, ":1.7");

    const quint64 probe = table.setHung(service);
    QVERIFY(probe != 0);
    QCOMPARE(table.setHung(service), quint64(0));
    QVERIFY(table.isHung(service));
    QVERIFY(table.hasOwner(service));
    table.probeEnded(service, probe, true);

    QVERIFY(!table.isHung(service));
    QCOMPARE(listener.heard, (QStringList{"found", "answers again"}));
}

void BusServiceTableTest::aServiceThatChangesHandsIsNotHungAndItsOldProbeCountsForNothing()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.ownerAnswered(service, ":1.7");
    const quint64 old = table.setHung(service);

    table.ownerChanged(service, ":1.8");
    QVERIFY(!table.isHung(service));
    const quint64 fresh = table.setHung(service);
    table.probeEnded(service, old, true);
    QVERIFY(table.isHung(service));
    table.probeEnded(service, fresh, false);

    QVERIFY(!table.isHung(service));
    QCOMPARE(listener.heard, (QStringList{"found", "appeared"}));
}

void BusServiceTableTest::aServiceWithoutOwnerCannotHang()
{
    ServiceTable table;
    Recorder listener;
    table.addListener(service, path, &listener);
    table.ownerAnswered(service, QString());

    QCOMPARE(table.setHung(service), quint64(0));
    QVERIFY(!table.isHung(service));
}

QTEST_GUILESS_MAIN(BusServiceTableTest)

#include "BusServiceTableTest.moc"
