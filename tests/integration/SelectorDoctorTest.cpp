// SPDX-License-Identifier: MIT
// selector doctor names each fault of a system, here made for real.
#include "DoctorRun.h"
#include "Files.h"
#include "InstanceListClient.h"
#include "ProviderListClient.h"
#include "ScriptedService.h"
#include "SelectorSystemTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QTest>

#include <unistd.h>

class SelectorDoctorTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aHealthySystemGivesNothingToComplainAbout();
    void aMissingBusIsOutOfReachAndMemoryExaminedAllTheSame();
    void missingManagersAreToldOfEach();
    void aSystemThatIsNotReadyIsTold();
    void managersThatHangLeaveTimeForTheModules();
    void aHungServiceRunsIntoTheTimeLimitAndItsBufferIsNoOrphan();
    void aRegistryEntryWithoutAnOwnerIsTold();
    void aRegistryEntryOfAMissingInstanceIsTold();
    void aServiceThatIsNotRegisteredIsTold();
    void aDescriptionThatClientsRefuseIsTold();
    void aServiceThatAnswersSomethingElseIsTold();
    void aMissingBufferIsTold();
    void aBufferThatMayNotBeReadIsDenied();
    void anOverwrittenBufferIsTold();
    void aDeadPublisherBehindALivingServiceIsTold();
    void aBufferWithoutADescriptionIsTold();
    void theBufferOfAKilledPublisherIsALeftover();
    void filesThatOnlyLookLikeBuffersAreTold();
    void aBufferOfAnotherLayoutIsTold();
    void aLeftoverThatMayNotBeReadIsDenied();
    void aBufferThatIsOpenToAllIsTold();

private:
    QString servedDescription() const;
    bool serve(const QString &name, const QString &description, const QByteArray &mode = "ok");
    DoctorRun doctor(const QStringList &more = {}, const QStringList &prefix = {}) const
    {
        return DoctorRun(SELECTOR, more + QStringList{module}, prefix);
    }

    QScopedPointer<ScriptedService> impostor;
};

namespace {

// A connection that registers a module which is not its own.
class Registrar
{
public:
    Registrar(const QString &module, const QString &data)
        : name("registrar-of-" + module)
    {
        auto connection
            = QDBusConnection::connectToBus(qEnvironmentVariable("PROCESSDATA_BUS"), name);
        auto call = QDBusMessage::createMethodCall(
            "com.orvalis.SystemInformationManager", "/com/orvalis/SystemInformationManager",
            "com.orvalis.SystemInformationManager1", "RegisterProvider");
        call.setArguments({module, data});
        good = connection.call(call).type() == QDBusMessage::ReplyMessage;
    }
    ~Registrar() { QDBusConnection::disconnectFromBus(name); }
    Registrar(const Registrar &) = delete;
    Registrar &operator=(const Registrar &) = delete;

    bool good = false;

private:
    const QString name;
};

const QString statusManager("com.orvalis.SystemStatusManager");
const QString informationManager("com.orvalis.SystemInformationManager");

} // namespace

void SelectorDoctorTest::init()
{
    SystemTest::init();
    bringUp({leaf("speed", "float64", {{"selectorType", "AnalogSelector"}})});
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
}

void SelectorDoctorTest::cleanup()
{
    impostor.reset();
    SelectorSystemTest::cleanup();
}

QString SelectorDoctorTest::servedDescription() const
{
    QString text;
    QString error;
    fetchDescription(module, "Controller", "1", text, error);
    return text;
}

// A service of that module which is no publisher and does not register.
bool SelectorDoctorTest::serve(const QString &name, const QString &description,
                               const QByteArray &mode)
{
    impostor.reset(new ScriptedService(name));
    return impostor->order({"mode", mode}) == "ok" && impostor->serve("1", description);
}

void SelectorDoctorTest::aHealthySystemGivesNothingToComplainAbout()
{
    const DoctorRun run = doctor();
    COMPARE_DOCTOR(run, 0, QStringList());
    QCOMPARE(run.goodChecks(),
             (QStringList{"versions", "bus", "services", "registry", "sources", "buffers",
                          "permissions"}));
}

void SelectorDoctorTest::aMissingBusIsOutOfReachAndMemoryExaminedAllTheSame()
{
    bus->stop();
    COMPARE_DOCTOR(doctor(), 3, QStringList{"error bus busOutOfReach "});
    publisher->process().kill();
    COMPARE_DOCTOR(doctor(), 3,
                   (QStringList{"error bus busOutOfReach ",
                                "warning buffers leftover " + bufferFile(module)}));
}

void SelectorDoctorTest::missingManagersAreToldOfEach()
{
    system->kill();
    COMPARE_DOCTOR(doctor(), 1,
                   (QStringList{"warning services serviceMissing " + informationManager,
                                "warning services serviceMissing " + statusManager}));
}

void SelectorDoctorTest::aSystemThatIsNotReadyIsTold()
{
    system->kill();
    VERIFY_COMMAND(publisher->playStatusManager());
    const QString missing = "warning services serviceMissing " + informationManager;
    COMPARE_DOCTOR(doctor(), 1,
                   (QStringList{missing, "warning services notReady " + statusManager}));
    VERIFY_COMMAND(publisher->announceStartupReady());
    COMPARE_DOCTOR(doctor(), 1, QStringList{missing});
}

void SelectorDoctorTest::managersThatHangLeaveTimeForTheModules()
{
    system->suspend();
    const QStringList fourTimesTheUsualLimit{"--timeout", "8"};
    const DoctorRun run = doctor(fourTimesTheUsualLimit);
    COMPARE_DOCTOR(run, 4,
                   (QStringList{"error services timeLimit " + informationManager,
                                "error services timeLimit " + statusManager}));
    QVERIFY2(!run.goodChecks().contains("registry"), run.report);
}

void SelectorDoctorTest::aHungServiceRunsIntoTheTimeLimitAndItsBufferIsNoOrphan()
{
    publisher->process().suspend();
    COMPARE_DOCTOR(doctor(), 4, QStringList{"error sources timeLimit " + module});
}

void SelectorDoctorTest::aRegistryEntryWithoutAnOwnerIsTold()
{
    const QString ghost = module + "ghost";
    const Registrar registrar(ghost, "{}");
    QVERIFY(registrar.good);
    const DoctorRun run(SELECTOR, {ghost});
    COMPARE_DOCTOR(run, 1, QStringList{"error registry serviceMissing " + ghost});
    QVERIFY2(run.text("serviceMissing", "finding").contains("is registered"), run.report);
    COMPARE_DOCTOR(DoctorRun(SELECTOR, {"NotHere"}), 1,
                   QStringList{"error registry serviceMissing NotHere"});
}

void SelectorDoctorTest::aRegistryEntryOfAMissingInstanceIsTold()
{
    const QString other = module + "other";
    const Registrar registrar(
        other, R"({"selectorTypeList":["Controller/1/A","Controller/9/A","Controller/9/B"]})");
    QVERIFY(registrar.good);
    VERIFY_COMMAND(
        publisher->create(other, "Controller", "1", description({leaf("speed", "float64")})));
    const DoctorRun run(SELECTOR, {other});
    COMPARE_DOCTOR(run, 1, QStringList{"error registry noSuchInstance " + other + "/Controller/9"});
}

void SelectorDoctorTest::aServiceThatIsNotRegisteredIsTold()
{
    const QString shy = module + "shy";
    QVERIFY(serve(shy, "{}"));
    const DoctorRun run(SELECTOR, {shy});
    QVERIFY2(run.faults().contains("warning registry notRegistered " + shy), run.report);
    QCOMPARE(run.exitCode, 1);
}

void SelectorDoctorTest::aDescriptionThatClientsRefuseIsTold()
{
    const QString file = bufferFile(module);
    publisher->process().kill();
    QVERIFY(serve(module, "{}"));
    COMPARE_DOCTOR(doctor(), 1,
                   (QStringList{"warning registry notRegistered " + module,
                                "error sources badDescription " + module + "/Controller/1",
                                "warning buffers leftover " + file}));
}

void SelectorDoctorTest::aServiceThatAnswersSomethingElseIsTold()
{
    const QString file = bufferFile(module);
    publisher->process().kill();
    QVERIFY(serve(module, "{}", "number"));
    COMPARE_DOCTOR(
        doctor(), 1,
        (QStringList{"warning registry notRegistered " + module,
                     "error sources serviceFailed " + module, "warning buffers leftover " + file}));
}

void SelectorDoctorTest::aMissingBufferIsTold()
{
    QVERIFY(QFile::remove(bufferFile(module)));
    COMPARE_DOCTOR(doctor(), 1,
                   QStringList{"error sources bufferMissing " + module + "/Controller/1"});
}

void SelectorDoctorTest::aBufferThatMayNotBeReadIsDenied()
{
    QVERIFY(QFile::setPermissions(bufferFile(module), QFile::Permissions()));
    COMPARE_DOCTOR(doctor({}, powerless()), 5,
                   QStringList{"error sources denied " + module + "/Controller/1"});
}

void SelectorDoctorTest::anOverwrittenBufferIsTold()
{
    QFile file(bufferFile(module));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.write("rubbish!") == 8);
    file.close();
    COMPARE_DOCTOR(doctor(), 1,
                   QStringList{"error sources notReadable " + module + "/Controller/1"});
}

void SelectorDoctorTest::aDeadPublisherBehindALivingServiceIsTold()
{
    const QString last = servedDescription();
    publisher->process().kill();
    QVERIFY(serve(module, last));
    COMPARE_DOCTOR(doctor(), 1,
                   (QStringList{"warning registry notRegistered " + module,
                                "error sources publisherDead " + module + "/Controller/1"}));
}

void SelectorDoctorTest::aBufferWithoutADescriptionIsTold()
{
    PrivateBus other;
    QVERIFY2(other.start(), other.report());
    COMPARE_DOCTOR(doctor(), 1,
                   (QStringList{"warning services serviceMissing " + informationManager,
                                "warning services serviceMissing " + statusManager,
                                "error registry serviceMissing " + module,
                                "warning buffers notDescribed " + bufferFile(module)}));
}

void SelectorDoctorTest::theBufferOfAKilledPublisherIsALeftover()
{
    publisher->process().kill();
    QTRY_VERIFY_WITH_TIMEOUT(!isRegistered(module), 20000);
    const DoctorRun run = doctor();
    COMPARE_DOCTOR(run, 1,
                   (QStringList{"error registry serviceMissing " + module,
                                "warning buffers leftover " + bufferFile(module)}));
    QVERIFY2(run.text("leftover", "finding").startsWith("its publisher died"), run.report);
}

void SelectorDoctorTest::filesThatOnlyLookLikeBuffersAreTold()
{
    const QString file = "/dev/shm/processdata." + module + "_Controller_2.7";
    QVERIFY(writeFile(file, "mine"));
    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadOther));
    const DoctorRun run = doctor();
    COMPARE_DOCTOR(run, 1, QStringList{"warning buffers notABuffer " + file});
    QVERIFY2(run.text("notABuffer", "finding").contains("4 bytes"), run.report);
}

void SelectorDoctorTest::aBufferOfAnotherLayoutIsTold()
{
    publisher->process().kill();
    const QString file = bufferFile(module);
    const qint64 versionOffset = 8;
    QVERIFY(overwrite(file, versionOffset, "\x09"));
    QVERIFY(QFile::remove(file + ".life"));
    QTRY_VERIFY_WITH_TIMEOUT(!isRegistered(module), 20000);
    const DoctorRun run = doctor();
    COMPARE_DOCTOR(run, 1,
                   (QStringList{"error registry serviceMissing " + module,
                                "warning buffers otherLayout " + file}));
    QCOMPARE(run.text("otherLayout", "finding"), QString("layout version 9, this system has 2"));
}

void SelectorDoctorTest::aLeftoverThatMayNotBeReadIsDenied()
{
    publisher->process().kill();
    QVERIFY(QFile::setPermissions(bufferFile(module) + ".life", QFile::Permissions()));
    QTRY_VERIFY_WITH_TIMEOUT(!isRegistered(module), 20000);
    COMPARE_DOCTOR(doctor({}, powerless()), 5,
                   (QStringList{"error registry serviceMissing " + module,
                                "warning buffers denied " + bufferFile(module)}));
}

void SelectorDoctorTest::aBufferThatIsOpenToAllIsTold()
{
    const auto open = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther;
    QVERIFY(QFile::setPermissions(bufferFile(module), open));
    COMPARE_DOCTOR(doctor(), 1, QStringList{"warning permissions openToAll " + bufferFile(module)});
}

QTEST_GUILESS_MAIN(SelectorDoctorTest)
#include "SelectorDoctorTest.moc"
