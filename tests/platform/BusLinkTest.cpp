// SPDX-License-Identifier: MIT
// A closed link leaves nothing behind through which QtDBus' thread could reach objects of its owner.
#include "BusLink.h"
#include "BusNames.h"
#include "BusTestMain.h"
#include "PrivateBus.h"

#include <QAtomicInt>
#include <QAtomicPointer>
#include <QDBusMessage>
#include <QThread>
#include <QtTest>

#include <dlfcn.h>

#include <memory>

namespace {

QAtomicPointer<const QObject> watched;
QAtomicInt touches; // of the watched object, by threads that it does not belong to

class Receiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void handle(const QDBusMessage & /*message*/) { }
};

struct OpenLink : BusLink
{
    OpenLink()
        : BusLink(BusChoice::fromEnvironment())
    {
        open(error);
    }

    QString error;
};

BusSignal ownerChanges()
{
    return {BusNames::daemonPath(), BusNames::daemonInterface(), "NameOwnerChanged"};
}

BusSignal anySignal()
{
    return {QString(), "com.orvalis.Test", "Any"};
}

// QtDBus' thread works in order, and opening a connection waits for it: what it was asked before is
// done afterwards.
void waitForQtDBus()
{
    QVERIFY(BusChoice::fromEnvironment().connectTo("barrier").isConnected());
    BusChoice::disconnectFrom("barrier");
}
}

// Closing a connection, QtDBus' thread disconnects from all objects that it still knows, whether
// they are alive or not. That takes effect in a window of microseconds, so the calls themselves are
// watched: this definition is found before Qt's own, and goes on to it.
bool QObject::disconnect(const QObject *sender, const char *signal, const QObject *receiver,
                         const char *member)
{
    if (sender == watched.loadAcquire() && sender->thread() != QThread::currentThread()) {
        touches.ref();
    }
    using Disconnect = bool (*)(const QObject *, const char *, const QObject *, const char *);
    static const auto original
        = reinterpret_cast<Disconnect>(::dlsym(RTLD_NEXT, "_ZN7QObject10disconnectEPKS_PKcS1_S3_"));
    return original(sender, signal, receiver, member);
}

class BusLinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void cleanup() { watched.storeRelease(nullptr); }

    void init() { touches = 0; }

    void theWatchSeesWhatQtDBusDoes();
    void aClosedLinkKnowsNoReceiver();
    void aLostConnectionKnowsNobody();
    void theLinkItselfIsReleased();

private:
    PrivateBus bus;
};

// Otherwise nothing below could fail.
void BusLinkTest::theWatchSeesWhatQtDBusDoes()
{
    Receiver receiver;
    watched.storeRelease(&receiver);
    {
        QDBusConnection connection = BusChoice::fromEnvironment().connectTo("double");
        QVERIFY(connection.connect(QString(), BusNames::daemonPath(), BusNames::daemonInterface(),
                                   "NameOwnerChanged", &receiver, SLOT(handle(QDBusMessage))));
    }
    BusChoice::disconnectFrom("double");
    QTRY_VERIFY_WITH_TIMEOUT(touches.loadAcquire() > 0, 20000);
}

void BusLinkTest::aClosedLinkKnowsNoReceiver()
{
    Receiver receiver;
    watched.storeRelease(&receiver);
    OpenLink link;
    QVERIFY2(link.isConnected(), qPrintable(link.error));
    QVERIFY(link.subscribe(ownerChanges(), &receiver, SLOT(handle(QDBusMessage))));
    QVERIFY(link.subscribe(anySignal(), &receiver, SLOT(handle(QDBusMessage))));
    link.close();
    waitForQtDBus();
    QCOMPARE(touches.loadAcquire(), 0);
}

void BusLinkTest::aLostConnectionKnowsNobody()
{
    Receiver receiver;
    watched.storeRelease(&receiver);
    OpenLink link;
    QVERIFY2(link.isConnected(), qPrintable(link.error));
    QVERIFY(link.subscribe(ownerChanges(), &receiver, SLOT(handle(QDBusMessage))));
    QSignalSpy lost(&link, &BusLink::lost);
    QSignalSpy restored(&link, &BusLink::restored);
    bus.stop();
    QTRY_COMPARE_WITH_TIMEOUT(lost.count(), 1, 20000);
    QVERIFY(bus.start());
    QTRY_COMPARE_WITH_TIMEOUT(restored.count(), 1, 20000);
    link.close();
    waitForQtDBus();
    QCOMPARE(touches.loadAcquire(), 0);
}

void BusLinkTest::theLinkItselfIsReleased()
{
    OpenLink link;
    watched.storeRelease(&link);
    QVERIFY2(link.isConnected(), qPrintable(link.error));
    link.close();
    waitForQtDBus();
    QCOMPARE(touches.loadAcquire(), 0);
}

BUS_TEST_MAIN(BusLinkTest)
#include "BusLinkTest.moc"
