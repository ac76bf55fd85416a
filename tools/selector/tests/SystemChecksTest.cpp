// SPDX-License-Identifier: MIT
// What selector doctor concludes from states that cannot be made on a test's own bus.
#include "SystemChecks.h"

#include "ReferenceBuffers.h"
#include "UserNames.h"

#include <QtTest>

#include <unistd.h>

using ProcessDataAccess::Result;

namespace {

void setBuffers(const QVector<BufferFile> &files, SystemState &state)
{
    const auto buffers = std::make_shared<ReferenceBuffers>();
    buffers->files = files;
    state.buffers = buffers;
}

QVector<BufferFile> &filesOf(const SystemState &state)
{
    return static_cast<ReferenceBuffers &>(*state.buffers).files;
}

// One registered module whose service has one good instance.
SystemState healthy()
{
    SystemState state;
    state.services = {true, {"Pump"}, true, true, true};
    state.ready = true;
    ModuleState module;
    module.name = "Pump";
    module.onBus = true;
    module.registered = true;
    module.complete = true;
    module.selectorTypes = QStringList{"Controller/a/b/AnalogSelector"};
    state.modules = {module};
    Examination source;
    source.source = {"Pump", "Controller", "a/b"};
    source.end = Step::Leaf;
    source.buffer.end = Step::Leaf;
    source.buffer.path = "/dev/shm/processdata.Pump_Controller_a_2fb.7";
    state.sources = {source};
    BufferFile file;
    file.path = source.buffer.path;
    file.state = BufferFile::Live;
    file.mode = 0640;
    setBuffers({file}, state);
    return state;
}

// "CODE EXITCODE" of each finding that is not good.
QStringList codes(const SystemState &state)
{
    QStringList list;
    const QVector<DoctorFinding> findings = checkSystem(state);
    for (const DoctorFinding &finding : findings) {
        if (finding.severity != DoctorFinding::Good) {
            list.append(finding.finding.codeName() + ' '
                        + QString::number(finding.finding.exitCode()));
        }
    }
    return list;
}

} // namespace

class SystemChecksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHealthySystemHasOneGoodFindingForEachCheck();
    void aMistypedModuleIsAskedFor();
    void anInstanceMayHoldASlash();
    void answersThatFailAreToldApart_data();
    void answersThatFailAreToldApart();
    void aRegistryThatDoesNotAnswerIsNotCalledFine_data();
    void aRegistryThatDoesNotAnswerIsNotCalledFine();
    void registryEntriesWithoutANameAreCounted();
    void aBufferOfAModuleThatDidNotAnswerInFullIsNoOrphan();
    void aRetiredBufferIsLeftOver();
    void withoutRegistryNobodyIsCalledUnregistered();
    void sharedMemoryThatCannotBeListedIsDenied();
    void aMissingPermissionComesWithWhatGivesIt();
    void whatAPlatformDoesNotShowIsNeitherGuessedNorBlamed();
};

void SystemChecksTest::aHealthySystemHasOneGoodFindingForEachCheck()
{
    QStringList checks;
    const QVector<DoctorFinding> findings = checkSystem(healthy());
    for (const DoctorFinding &finding : findings) {
        QCOMPARE(finding.severity, DoctorFinding::Good);
        checks.append(finding.check);
    }
    QCOMPARE(checks,
             (QStringList{"bus", "services", "registry", "sources", "buffers", "permissions"}));
}

void SystemChecksTest::aMistypedModuleIsAskedFor()
{
    SystemState state = healthy();
    ModuleState unknown;
    unknown.name = "Pmup";
    state.modules.append(unknown);
    QStringList advice;
    const QVector<DoctorFinding> findings = checkSystem(state);
    for (const DoctorFinding &finding : findings) {
        advice += finding.finding.advice;
    }
    QVERIFY2(advice.contains("did you mean \"Pump\"? start its service, or fix the name"),
             qPrintable(advice.join('\n')));
}

void SystemChecksTest::anInstanceMayHoldASlash()
{
    SystemState state = healthy();
    state.modules[0].selectorTypes = QStringList{"Controller/a/b/X", "Controller/a/X"};
    QCOMPARE(codes(state), QStringList{"noSuchInstance 1"});
}

void SystemChecksTest::answersThatFailAreToldApart_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("code");
    QTest::newRow("denied") << int(Result::Denied) << "denied 5";
    QTest::newRow("in time") << int(Result::TimedOut) << "timeLimit 4";
    QTest::newRow("ended") << int(Result::ServiceMissing) << "serviceMissing 1";
    QTest::newRow("error") << int(Result::ServiceFailed) << "serviceFailed 1";
}

void SystemChecksTest::answersThatFailAreToldApart()
{
    QFETCH(int, result);
    QFETCH(QString, code);
    const Answer answer{Result(result), "why"};
    SystemState state = healthy();
    state.status = answer;
    QCOMPARE(codes(state), QStringList{code});
    state = healthy();
    state.registry = answer;
    QCOMPARE(codes(state), QStringList{code});
    state = healthy();
    state.modules[0].answer = answer;
    QCOMPARE(codes(state), QStringList{code});
    state = healthy();
    state.bus = answer;
    QCOMPARE(codes(state), QStringList{code});
}

void SystemChecksTest::aRegistryThatDoesNotAnswerIsNotCalledFine_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("not in time") << int(Result::TimedOut);
    QTest::newRow("not permitted") << int(Result::Denied);
    QTest::newRow("not well") << int(Result::ServiceFailed);
}

void SystemChecksTest::aRegistryThatDoesNotAnswerIsNotCalledFine()
{
    QFETCH(const int, result);
    SystemState state = healthy();
    state.registry = {Result(result), "no answer"};
    state.modules[0].registered = false;
    state.modules[0].selectorTypes.clear();
    QStringList checks;
    for (const DoctorFinding &finding : checkSystem(state)) {
        checks.append(QString("%1 %2").arg(finding.check).arg(finding.severity));
    }
    QCOMPARE(checks,
             (QStringList{"bus 0", "services 2", "sources 0", "buffers 0", "permissions 0"}));
}

void SystemChecksTest::registryEntriesWithoutANameAreCounted()
{
    SystemState state = healthy();
    state.unreadableProviders = 2;
    QCOMPARE(codes(state), QStringList{"badEntry 1"});
}

void SystemChecksTest::aBufferOfAModuleThatDidNotAnswerInFullIsNoOrphan()
{
    SystemState state = healthy();
    filesOf(state)[0].path += '1';
    QCOMPARE(codes(state), QStringList{"notDescribed 1"});
    state.modules[0].complete = false;
    QCOMPARE(codes(state), QStringList());
    state.modules[0].name = "Pum";
    QVERIFY(codes(state).contains("notDescribed 1"));
}

void SystemChecksTest::aRetiredBufferIsLeftOver()
{
    SystemState state = healthy();
    BufferFile file = filesOf(state).first();
    file.path += '1';
    file.state = BufferFile::Retired;
    filesOf(state).append(file);
    QCOMPARE(codes(state), QStringList{"leftover 1"});
}

void SystemChecksTest::withoutRegistryNobodyIsCalledUnregistered()
{
    SystemState state = healthy();
    state.services.informationManager = false;
    state.modules[0].registered = false;
    QCOMPARE(codes(state), QStringList{"serviceMissing 1"});
}

void SystemChecksTest::sharedMemoryThatCannotBeListedIsDenied()
{
    SystemState state = healthy();
    filesOf(state).clear();
    static_cast<ReferenceBuffers &>(*state.buffers).error = "/dev/shm cannot be read";
    QCOMPARE(codes(state), QStringList{"denied 5"});
}

void SystemChecksTest::aMissingPermissionComesWithWhatGivesIt()
{
    BufferFile file;
    file.ownerUid = 61001;
    file.groupId = 61002;
    file.mode = 0640;
    const QString me = UserNames::ofUser(::geteuid());
    QCOMPARE(remedyFor(file, 040), "sudo usermod -aG 61002 " + me + ", then log in again");
    QCOMPARE(remedyFor(file, 020), QString("run as user 61001 or as root"));
    file.groupId = 0; // nobody should become a member of that one
    QCOMPARE(remedyFor(file, 040), QString("run as user 61001 or as root"));
}

void SystemChecksTest::whatAPlatformDoesNotShowIsNeitherGuessedNorBlamed()
{
    const Answer hidden{Result::NotSupported, "not here"};
    SystemState state = healthy();
    state.services = {false, {}, false, false, false};
    state.registry = hidden;
    state.modules[0].registered = false;
    state.modules[0].answer = hidden;
    state.modules[0].complete = false;
    state.sources.clear();
    filesOf(state).clear();
    QCOMPARE(codes(state), QStringList());

    state.modules[0].onBus = false;
    QCOMPARE(codes(state), QStringList{"serviceMissing 1"});
}

QTEST_APPLESS_MAIN(SystemChecksTest)
#include "SystemChecksTest.moc"
