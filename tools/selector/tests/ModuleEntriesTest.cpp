// SPDX-License-Identifier: MIT
// Rows of the provider list.
#include "ModuleEntries.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

const char *const list = R"([
    {"moduleName": "Pump", "additionalData": {"selectorTypeList": ["C/1/AnalogSelector", "C/1/DigitalSelector"]}},
    {"moduleName": "Tank", "additionalData": {"selectorTypeList": ["T/1/DigitalSelector"]}},
    {"moduleName": "Plain"},
    {"additionalData": {"selectorTypeList": ["X/1/AnalogSelector"]}}])";

QStringList rowsOf(const QVector<Module> &modules)
{
    QStringList rows;
    for (const Module &module : modules) {
        for (const Row &row : moduleEntry(module).rows) {
            rows.append(row.at(0).text + ' ' + row.at(1).text + ' ' + row.at(2).text);
        }
    }
    return rows;
}

void quiet(QtMsgType, const QMessageLogContext &, const QString &)
{
}

} // namespace

class ModuleEntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qInstallMessageHandler(quiet); }
    void cleanupTestCase() { qInstallMessageHandler(nullptr); }
    void allModulesAreListed();
    void oneTypeIsPicked();
    void aModuleWithoutNameFails();
    void noListIsNoModule();
};

void ModuleEntriesTest::allModulesAreListed()
{
    QCOMPARE(rowsOf(modulesOfList(list)),
             QStringList({"Pump C/1/AnalogSelector ", "Pump C/1/DigitalSelector ",
                          "Tank T/1/DigitalSelector ", "Plain  ",
                          " X/1/AnalogSelector a module without a readable name"}));
}

void ModuleEntriesTest::oneTypeIsPicked()
{
    QCOMPARE(rowsOf(modulesOfType(list, "DigitalSelector")),
             QStringList({"Pump C/1/DigitalSelector ", "Tank T/1/DigitalSelector "}));
    QVERIFY(modulesOfType(list, "digitalselector").isEmpty());
}

void ModuleEntriesTest::aModuleWithoutNameFails()
{
    const Entry entry = moduleEntry(modulesOfType(list, "AnalogSelector").last());
    QCOMPARE(int(entry.state), int(Entry::Failed));
    QCOMPARE(entry.json.value("status").toString(), QString("failed"));
}

void ModuleEntriesTest::noListIsNoModule()
{
    QVERIFY(modulesOfList("").isEmpty());
    QVERIFY(modulesOfType("{}", "AnalogSelector").isEmpty());
}

QTEST_APPLESS_MAIN(ModuleEntriesTest)
#include "ModuleEntriesTest.moc"
