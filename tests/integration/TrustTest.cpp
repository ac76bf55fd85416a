// SPDX-License-Identifier: MIT
// What each party of docs/security.md cannot do to the others, however it tries.
#include "BusTestMain.h"
#include "Descriptions.h"
#include "DoctorRun.h"
#include "OtherUsersDeeds.h"
#include "PolicedBus.h"
#include "PublisherProcess.h"
#include "RequireRoot.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <vector>

namespace {

const QJsonObject pump
    = description({leaf("setpoint", "int32"), leaf("name", "string", {{"capacity", 40}})});

QByteArray registeringAs(const PolicedBus &bus, const QString &user)
{
    return Deed(user,
                "dbus-send --bus=" + bus.address()
                    + " --print-reply --dest=com.orvalis.SystemInformationManager "
                      "/com/orvalis/SystemInformationManager "
                      "com.orvalis.SystemInformationManager1.RegisterProvider "
                      "string:Forged string:x")
        .errors;
}

} // namespace

class TrustTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aStrangerFetchesADescriptionAndNoValue();
    void aMemberOfTheClientsGroupPublishesNothing();
    void publishersOfTwoGroupsHaveReadersOfTheirOwn();
    void aRuleForEachModuleKeepsPublishersFromOneAnothersNames();
    void aBufferFullOfNoiseHarmsNoReader();
    void rootCleansUpAfterEveryUser();

private:
    void startBus(const QMap<QString, QString> &modules = {});
    QByteArray publish(const QString &name, const char *user);
    QStringList bufferFiles() const;

    QString module;
    QScopedPointer<PolicedBus> bus;
    std::vector<std::unique_ptr<PublisherProcess>> publishers;
};

void TrustTest::init()
{
    REQUIRE_ROOT();
    module = uniqueModule();
}

void TrustTest::cleanup()
{
    publishers.clear();
    bus.reset();
    removeLeftBuffers(module);
}

void TrustTest::startBus(const QMap<QString, QString> &modules)
{
    bus.reset(new PolicedBus);
    QVERIFY2(bus->start(modules), bus->report().constData());
}

// Adds a publisher process of that user; gives its refusal.
QByteArray TrustTest::publish(const QString &name, const char *user)
{
    publishers.push_back(std::make_unique<PublisherProcess>(QStringList{"--as", user}));
    const QByteArray problem = publishers.back()->serve(name, pump);
    return problem.isEmpty() ? publishers.back()->publish("setpoint", 8) : problem;
}

QStringList TrustTest::bufferFiles() const
{
    return buffersOf(module).replaceInStrings(QRegularExpression("^"), "/dev/shm/");
}

void TrustTest::aStrangerFetchesADescriptionAndNoValue()
{
    startBus();
    VERIFY_COMMAND(publish(module, PolicedBus::publisher));
    QCOMPARE(bufferFiles().size(), 1);

    const Deed fetching(PolicedBus::stranger,
                        "dbus-send --bus=" + bus->address()
                            + " --print-reply=literal --dest=com.orvalis.ProcessData." + module
                            + " /com/orvalis/ProcessData/Controller com.orvalis.ProcessDescription1"
                              ".GetProcessDataDescription string:1 string:");
    QVERIFY2(fetching.done && fetching.output.contains("setpoint"), fetching.errors);

    QCOMPARE(Reading(PolicedBus::stranger, selectorUrl(module, "setpoint")).line,
             QByteArray("3  refused"));
    const Deed reading(PolicedBus::stranger, "cat " + bufferFiles().at(0));
    QVERIFY2(!reading.done && reading.errors.contains("Permission denied"), reading.errors);
    QCOMPARE(reading.output, QByteArray());
}

void TrustTest::aMemberOfTheClientsGroupPublishesNothing()
{
    startBus();
    PublisherProcess registry;
    VERIFY_COMMAND(registry.start());
    VERIFY_COMMAND(registry.playRegistry());

    const QByteArray refusal = publish(module, PolicedBus::client);

    QVERIFY2(refusal.startsWith("error Cannot own com.orvalis.ProcessData." + module.toUtf8()),
             refusal);
    QCOMPARE(bufferFiles(), QStringList());
    const QByteArray registering = registeringAs(*bus, "61002:61101");
    QVERIFY2(registering.contains("AccessDenied"), registering);
}

void TrustTest::publishersOfTwoGroupsHaveReadersOfTheirOwn()
{
    startBus();
    const QString other = module + "b";
    VERIFY_COMMAND(publish(module, PolicedBus::publisher));
    VERIFY_COMMAND(publish(other, PolicedBus::otherPublisher));
    const QString url = selectorUrl(module, "setpoint");
    const QString otherUrl = selectorUrl(other, "setpoint");

    QCOMPARE(Reading(PolicedBus::client, otherUrl).line, QByteArray("3  refused"));
    QCOMPARE(Reading(PolicedBus::otherClient, url).line, QByteArray("3  refused"));
    QCOMPARE(Reading(PolicedBus::client, url).line, QByteArray("0 8 written"));
    QCOMPARE(Reading(PolicedBus::otherClient, otherUrl).line, QByteArray("0 8 written"));
}

void TrustTest::aRuleForEachModuleKeepsPublishersFromOneAnothersNames()
{
    const QString other = module + "b";
    startBus({{"pump", module}, {"drive", other}});

    const QByteArray refusal = publish(module, PolicedBus::otherPublisher);

    QVERIFY2(refusal.startsWith("error Cannot own com.orvalis.ProcessData." + module.toUtf8()),
             refusal);
    QCOMPARE(bufferFiles(), QStringList());
    VERIFY_COMMAND(publish(other, PolicedBus::otherPublisher));
    VERIFY_COMMAND(publish(module, PolicedBus::publisher));
    QCOMPARE(Reading(PolicedBus::client, selectorUrl(module, "setpoint")).line,
             QByteArray("0 8 written"));
}

void TrustTest::aBufferFullOfNoiseHarmsNoReader()
{
    startBus();
    const QString other = module + "b";
    VERIFY_COMMAND(publish(module, PolicedBus::publisher));
    QCOMPARE(bufferFiles().size(), 1);
    const QString file = bufferFiles().at(0);
    VERIFY_COMMAND(publish(other, PolicedBus::publisher));
    SelectorHandlerProcessValue handler({selectorUrl(module, "setpoint"),
                                         selectorUrl(module, "name"),
                                         selectorUrl(other, "setpoint")},
                                        nullptr);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(8));
    publishers.front()->process().suspend(); // its own locks are what noise may harm
    const QString size = QString::number(QFileInfo(file).size());
    ChildProcess noise("setpriv",
                       {"--reuid", "61002", "--regid", "61101", "--clear-groups", "sh", "-c",
                        "for i in $(seq 200); do head -c " + size + " /dev/urandom | dd of=" + file
                            + " conv=notrunc status=none || exit 1; done"});
    QVERIFY(noise.start());

    qint64 reads = 0;
    bool whole = true;
    while (noise.isRunning()) {
        const QVector<ProcessValue> values = handler.getValues();
        whole = whole && values.size() == 3 && values.at(1).getValue().toString().size() <= 40
            && values.at(2).getValue() == QVariant(8)
            && values.at(2).getErrorType() == ProcessDataDefinitions::NoError;
        ++reads;
        QCoreApplication::processEvents();
    }

    QVERIFY(noise.waitForEnd());
    QVERIFY2(noise.exitCode() == 0, noise.report());
    QVERIFY(whole);
    QVERIFY(reads > 0);
    QVERIFY(handler.getValue(0).getValue() != QVariant(8)); // the noise did arrive
}

void TrustTest::rootCleansUpAfterEveryUser()
{
    startBus();
    const QString other = module + "b";
    VERIFY_COMMAND(publish(module, PolicedBus::publisher));
    const QStringList dead = bufferFiles();
    QCOMPARE(dead.size(), 1);
    VERIFY_COMMAND(publish(other, PolicedBus::otherPublisher));
    publishers.front()->process().kill();

    COMPARE_DOCTOR(DoctorRun(SELECTOR, {"--clean", "--yes", module, other}), 0, QStringList());

    QVERIFY(!QFile::exists(dead.at(0)));
    QCOMPARE(bufferFiles().size(), 1);
    QCOMPARE(Reading(PolicedBus::otherClient, selectorUrl(other, "setpoint")).line,
             QByteArray("0 8 written"));
}

BUS_TEST_MAIN(TrustTest)
#include "TrustTest.moc"
