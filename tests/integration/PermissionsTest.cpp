// SPDX-License-Identifier: MIT
// Publishers, clients and strangers as different users under the installed bus policies.
#include "BusTestMain.h"
#include "Descriptions.h"
#include "OtherUsersDeeds.h"
#include "PolicedBus.h"
#include "ProviderListClient.h"
#include "PublisherProcess.h"
#include "RequireRoot.h"
#include "RudeCaller.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

namespace {

const QJsonObject pump = description({leaf("setpoint", "int32")});
const QJsonObject meter = description({leaf("level", "int32", {{"readOnly", true}})});

} // namespace

class PermissionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aMemberOfTheGroupReadsAndWrites();
    void aReaderWithoutAccessIsToldWhichGroupToJoin();
    void aReaderWhoMayOnlyReadIsToldWhyHisWriteFails();
    void aBufferOfReadOnlyLeavesIsNotWritableForItsGroup();
    void aSquatterOnTheNamesOfBuffersKeepsNobodyOut();
    void aStrangerMayNotTakeAModulesName();
    void noMessageLetsAnotherPublisherTakeALivingModulesName();
    void aCallerThatReadsNothingIsFoundOutUnderTheInstalledPolicies();
    void aStrangersAnnouncementsAndRegistrationsAreNotTaken();

private:
    QByteArray publish(const QJsonObject &description, const QString &path);

    QString module;
    QScopedPointer<PolicedBus> bus;
    QScopedPointer<PublisherProcess> publisher;
};

void PermissionsTest::init()
{
    REQUIRE_ROOT();
    module = uniqueModule();
    bus.reset(new PolicedBus);
    QVERIFY2(bus->start(), bus->report().constData());
}

void PermissionsTest::cleanup()
{
    publisher.reset();
    bus.reset();
    removeLeftBuffers(module);
}

// As a service that is set up as docs/security.md says.
QByteArray PermissionsTest::publish(const QJsonObject &description, const QString &path)
{
    publisher.reset(new PublisherProcess({"--as", PolicedBus::publisher}));
    const QByteArray problem = publisher->serve(module, description);
    return problem.isEmpty() ? publisher->publish(path, 8) : problem;
}

void PermissionsTest::aMemberOfTheGroupReadsAndWrites()
{
    VERIFY_COMMAND(publish(pump, "setpoint"));
    QCOMPARE(QFileInfo(bufferFile(module)).groupId(), PolicedBus::buffersGroup);

    const Reading reading(PolicedBus::client, selectorUrl(module, "setpoint"));

    QCOMPARE(reading.line, QByteArray("0 8 written"));
    QCOMPARE(reading.errors, QByteArray());
    QCOMPARE(publisher->waitForWrite("setpoint"), QByteArray("44"));
}

void PermissionsTest::aReaderWithoutAccessIsToldWhichGroupToJoin()
{
    VERIFY_COMMAND(publish(pump, "setpoint"));

    const Reading reading(PolicedBus::stranger, selectorUrl(module, "setpoint"));

    QCOMPARE(reading.line, QByteArray("3  refused"));
    QVERIFY2(reading.errors.contains("Permission denied; reading it takes membership in the group "
                                     "61101 (its mode is 660)"),
             reading.errors);
}

// As an administrator may set it for the life of a buffer.
void PermissionsTest::aReaderWhoMayOnlyReadIsToldWhyHisWriteFails()
{
    VERIFY_COMMAND(publish(pump, "setpoint"));
    QCOMPARE(::chmod(bufferFile(module).toUtf8(), 0640), 0);

    const Reading reading(PolicedBus::client, selectorUrl(module, "setpoint"));

    QCOMPARE(reading.line, QByteArray("0 8 refused"));
    QVERIFY2(reading.errors.contains("this process may not write to buffer"), reading.errors);
    QVERIFY2(
        reading.errors.contains("that takes the right to write " + bufferFile(module).toUtf8()),
        reading.errors);
}

void PermissionsTest::aBufferOfReadOnlyLeavesIsNotWritableForItsGroup()
{
    VERIFY_COMMAND(publish(meter, "level"));

    const Reading reading(PolicedBus::client, selectorUrl(module, "level"));

    QCOMPARE(reading.line, QByteArray("0 8 refused"));
    const Deed overwriting(PolicedBus::client, ": >> " + bufferFile(module));
    QVERIFY(!overwriting.done);
    const Deed asMember("61002:61101", ": >> " + bufferFile(module));
    QVERIFY2(!asMember.done && asMember.errors.contains("Permission denied"), asMember.errors);
    QVERIFY(Deed("61002:61101", "cat " + bufferFile(module) + " > /dev/null").done);
}

void PermissionsTest::aSquatterOnTheNamesOfBuffersKeepsNobodyOut()
{
    const QString prefix = "/dev/shm/processdata." + module + "_Controller_1";
    const Deed squatting(PolicedBus::stranger,
                         QString("for i in 1 2 9007199254740991; do : > %1.$i || exit 1; done; "
                                 "mkdir %1.3 && ln -s /dev/zero %1.4")
                             .arg(prefix));
    QVERIFY2(squatting.done, squatting.errors);
    const QStringList squatted
        = QDir("/dev/shm").entryList({"*" + module + "*"}, QDir::AllEntries | QDir::System);
    QCOMPARE(squatted.size(), 5);

    VERIFY_COMMAND(publish(pump, "setpoint"));

    const Reading reading(PolicedBus::client, selectorUrl(module, "setpoint"));
    QCOMPARE(reading.line, QByteArray("0 8 written"));
    const QString all = "/dev/shm/*" + module + "*";
    QVERIFY(!Deed(PolicedBus::stranger, "rm -r " + all).done); // its own go, the buffer stays
    const Reading again(PolicedBus::client, selectorUrl(module, "setpoint"));
    QCOMPARE(again.line, QByteArray("0 44 written"));
}

void PermissionsTest::aStrangerMayNotTakeAModulesName()
{
    PublisherProcess stranger({"--as", PolicedBus::stranger});
    VERIFY_COMMAND(stranger.start());

    const QByteArray refusal = stranger.create(module, "Controller", "1", pump);

    QVERIFY2(refusal.startsWith("error Cannot own com.orvalis.ProcessData." + module.toUtf8()),
             refusal);
    QVERIFY2(refusal.contains("its bus policy lets root and members of the group "
                              "processdata-publisher do that"),
             refusal);
    QVERIFY(bufferFile(module).startsWith("not one")); // nothing was left
    VERIFY_COMMAND(publish(pump, "setpoint"));
    QCOMPARE(Reading(PolicedBus::client, selectorUrl(module, "setpoint")).line,
             QByteArray("0 8 written"));
}

void PermissionsTest::noMessageLetsAnotherPublisherTakeALivingModulesName()
{
    VERIFY_COMMAND(publish(pump, "setpoint"));
    RudeCaller caller(bus->address());
    const QByteArray service = "com.orvalis.ProcessData." + module.toUtf8();
    const QByteArray path = "/" + QByteArray((32 << 20) - 4096, 'x');
    const RudeCaller::Answer answer = caller.ask({service, path, "a.b", "Any", {}});
    QCOMPARE(answer.error, QByteArray("org.freedesktop.DBus.Error.LimitsExceeded"));

    PublisherProcess other({"--as", PolicedBus::publisher});
    VERIFY_COMMAND(other.start());
    const QByteArray refusal = other.create(module, "Controller", "1", pump);
    QVERIFY2(refusal.contains("another process owns it"), refusal);
    QCOMPARE(Reading(PolicedBus::client, selectorUrl(module, "setpoint")).line,
             QByteArray("0 8 written"));
}

// It never answers whether it has read, so it gets one large answer, and the bus daemon keeps
// reading what the publisher sends to others.
void PermissionsTest::aCallerThatReadsNothingIsFoundOutUnderTheInstalledPolicies()
{
    QJsonObject large = description({leaf("setpoint", "int32")});
    large.insert("remark", QString(9 << 20, 'x'));
    VERIFY_COMMAND(publish(large, "setpoint"));
    const RudeCaller::Call fetch{"com.orvalis.ProcessData." + module.toUtf8(),
                                 "/com/orvalis/ProcessData/Controller",
                                 "com.orvalis.ProcessDescription1",
                                 "GetProcessDataDescription",
                                 {"1", ""}};
    constexpr int calls = 60;
    RudeCaller rude(bus->address());
    rude.stopReading();
    rude.send(fetch, calls);

    RudeCaller caller(bus->address());
    for (int i = 0; i < 3; ++i) {
        const RudeCaller::Answer answer = caller.ask(fetch);
        QVERIFY2(answer.error.isEmpty() && answer.size > 9 << 20, answer.error);
    }
    rude.readAgain();
    QCOMPARE(rude.takeAnswers(calls).size(), calls);
}

void PermissionsTest::aStrangersAnnouncementsAndRegistrationsAreNotTaken()
{
    PublisherProcess registry;
    VERIFY_COMMAND(registry.start());
    VERIFY_COMMAND(registry.playRegistry());
    VERIFY_COMMAND(publish(pump, "setpoint"));
    SelectorHandlerProcessValue handler({selectorUrl(module, "setpoint")}, nullptr);
    QSignalSpy spy(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
    const QString send = "dbus-send --bus=" + bus->address() + ' ';

    QVERIFY(Deed(PolicedBus::stranger,
                 send
                     + "--type=signal /com/orvalis/ProcessData/Controller "
                       "com.orvalis.ProcessDescription1.ProcessDataDescriptionChanged string:1")
                .done);
    const Deed registering(PolicedBus::stranger,
                           send
                               + "--print-reply --dest=com.orvalis.SystemInformationManager "
                                 "/com/orvalis/SystemInformationManager "
                                 "com.orvalis.SystemInformationManager1.RegisterProvider "
                                 "string:Forged string:x");
    QVERIFY(!registering.done);
    QVERIFY2(registering.errors.contains("AccessDenied"), registering.errors);

    const auto registered = [] {
        QString list;
        QString problem;
        fetchRegisteredProviderList(list, problem);
        return list + problem;
    };
    QTRY_VERIFY2_WITH_TIMEOUT(registered().contains(module), qPrintable(registered()), 20000);
    QVERIFY(!registered().contains("Forged"));
    VERIFY_COMMAND(publisher->replaceDescription(description({leaf("setpoint", "int16")})));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), 20000);
}

BUS_TEST_MAIN(PermissionsTest)
#include "PermissionsTest.moc"
