// SPDX-License-Identifier: MIT
// Class forms of the platform contracts that the library relies on.
#include "ClassForm.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "ConfigurationAndProcessDataParser.h"
#include "DBusPendingReply.h"
#include "DBusProcessDescriptionConnector.h"
#include "ErrorContainer.h"
#include "JsonFunctions.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"
#include "PropertyManagerConst.h"
#include "SelectorUrlHandler.h"
#include "SystemInformationManagerRegistryDefinitions.h"
#include "SystemStatusManagerDBusConnector.h"
#include "UnlikePlatform.h"

#include <QtTest>

#include <memory>
#include <type_traits>

#define OPEN(name, member)                                                                         \
    struct name                                                                                    \
    {                                                                                              \
        friend auto memberOf(name);                                                                \
    };                                                                                             \
    template struct Opens<name, &ProcessDataManager::member>;

OPEN(ManagerRoot, rootElement)
OPEN(ManagerMemory, sharedMemory)
OPEN(ManagerName, bufferName)
OPEN(ManagerAttached, attached)
OPEN(ManagerMutex, mutex)

namespace {

QStringList signalsOf(const QMetaObject &metaObject)
{
    QStringList lines;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        lines.append(metaObject.method(i).methodSignature());
    }
    return lines;
}

} // namespace

class ContractsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aProcessValueIsAPolymorphicValue()
    {
        QVERIFY(std::has_virtual_destructor<ProcessValue>::value);
        QVERIFY(std::is_copy_constructible<ProcessValue>::value);
        QVERIFY(std::is_copy_assignable<ProcessValue>::value);
        const ProcessValue none(static_cast<ProcessDataDefinitions::ErrorTypes>(3));
        QCOMPARE(int(none.getErrorType()), 3);
        QVERIFY(!none.getValue().isValid());
        QVector<ProcessValue> values{none};
        values.append(ProcessValue(1));
        const QVector<ProcessValue> copy = values;
        QCOMPARE(copy.at(1).getValue(), QVariant(1));
    }

    void aCopyOfAProcessValueHasAllOfIt_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("none") << QVariant();
        QTest::newRow("a number") << QVariant(21.5);
        QTest::newRow("a text") << QVariant("north");
        QTest::newRow("a type without a value") << QVariant(QVariant::Int);
    }

    void aCopyOfAProcessValueHasAllOfIt()
    {
        QFETCH(QVariant, value);
        const ProcessValue original(value, ProcessDataDefinitions::SourceLost, 42);

        const QVector<ProcessValue> copies(3, original);
        const ProcessValue &copy = copies.last();

        QCOMPARE(copy.getValue(), value);
        QCOMPARE(copy.getValue().isNull(), value.isNull());
        QCOMPARE(copy.getErrorType(), ProcessDataDefinitions::SourceLost);
        QCOMPARE(copy.getTimestamp(), qint64(42));
    }

    void aLeafIsItsBaseWithoutAdjustment()
    {
        using Base = ConfigurationAndProcessDataBase;
        QVERIFY((std::is_base_of<Base, ProcessDataValue>::value));
        QVERIFY((std::is_same<Base::ProcessDataValueSharedPointer,
                              QSharedPointer<ProcessDataValue>>::value));
        UnlikePlatform platform;
        platform.source("m", "o", "i").leaf("a");
        ProcessDataManager manager;
        const auto root = manager.createProcessDataFromJson("description of m/o/i", "x",
                                                            ProcessDataManager::InitTypeAttach);
        const QSharedPointer<ProcessDataValue> leaf
            = root->getLeafProcessDataValue("scripted://m/o/i/a");
        const QSharedPointer<Base> base = leaf;
        QVERIFY(!base.isNull());
        QCOMPARE(static_cast<void *>(base.data()), static_cast<void *>(leaf.data()));
    }

    void hasLeafPropertyFollowsReadLeafProperty()
    {
        const int read = virtualSlotOf(&ConfigurationAndProcessDataBase::readLeafProperty);
        QVERIFY(read >= 0);
        QCOMPARE(virtualSlotOf(&ConfigurationAndProcessDataBase::hasLeafProperty), read + 1);
        QCOMPARE(virtualSlotOf(&ProcessDataValue::getValue), -1);
        QCOMPARE(virtualSlotOf(&ProcessDataValue::setValue), -1);
    }

    void aManagersMembersStandInTheOrderOfTheirRelease()
    {
        QVERIFY(std::has_virtual_destructor<ProcessDataManager>::value);
        QCOMPARE(offsetOf(memberOf(ManagerRoot())), std::ptrdiff_t(sizeof(void *)));
        QVERIFY(offsetOf(memberOf(ManagerMemory())) > offsetOf(memberOf(ManagerRoot())));
        QVERIFY(offsetOf(memberOf(ManagerName())) > offsetOf(memberOf(ManagerMemory())));
        QVERIFY(offsetOf(memberOf(ManagerAttached())) > offsetOf(memberOf(ManagerName())));
        QVERIFY(offsetOf(memberOf(ManagerMutex())) > offsetOf(memberOf(ManagerAttached())));
        QCOMPARE(int(ProcessDataManager::InitTypeAttach), 1);
    }

    void aUrlHoldsFiveTexts()
    {
        QVERIFY(std::has_virtual_destructor<SelectorUrlHandler>::value);
        QVERIFY(sizeof(SelectorUrlHandler) >= sizeof(void *) + 5 * sizeof(QString) + 2);
        QVERIFY(!(std::is_default_constructible<SelectorUrlHandler>::value));
    }

    void anErrorIsAPolymorphicValueAndAMetaType()
    {
        QVERIFY(std::has_virtual_destructor<ErrorContainer>::value);
        QVERIFY(std::is_default_constructible<ErrorContainer>::value);
        QVERIFY(std::is_copy_assignable<ErrorContainer>::value);
        QCOMPARE(QMetaType::typeName(qMetaTypeId<ErrorContainer>()), "ErrorContainer");
        QString text;
        QDebug(&text) << ErrorContainer(5, "why") << "next";
        QCOMPARE(text.trimmed(), QString("ErrorContainer(5, \"why\") next"));
    }

    void connectorsHaveTheirSignals()
    {
        QCOMPARE(
            signalsOf(DBusProcessDescriptionConnector::staticMetaObject),
            (QStringList{"processDataDescriptionChanged(QString)", "propertyChanged(QString)"}));
        QCOMPARE(signalsOf(SystemStatusManagerDBusConnector::staticMetaObject),
                 QStringList{"orvalisStartupReady()"});
        QCOMPARE(signalsOf(DBusPendingReply::staticMetaObject),
                 (QStringList{"dBusServiceFinished()", "dBusServiceError(ErrorContainer)"}));
        QCOMPARE(DBusProcessDescriptionConnector::staticMetaObject.superClass(),
                 &DBusConnectorBase::staticMetaObject);
    }

    void operationsHaveTheirSignatures()
    {
        QSharedPointer<DBusProcessDescriptionConnector> (*connect)(const QString &, const QString &)
            = &DBusProcessDescriptionConnector::createAndConnect;
        QSharedPointer<SystemStatusManagerDBusConnector> (*connectStatus)()
            = &SystemStatusManagerDBusConnector::createAndConnect;
        DBusReply (DBusProcessDescriptionConnector::*fetch)(const QString &, const QString &) const
            = &DBusProcessDescriptionConnector::getProcessDataDescription;
        bool (ConfigurationAndProcessDataParser::*render)(
            const QSharedPointer<ConfigurationAndProcessDataBase> &, QByteArray &,
            QJsonDocument::JsonFormat) const
            = &ConfigurationAndProcessDataParser::frameToByteArray;
        bool (DBusConnectorBase::*valid)() const = &DBusConnectorBase::isDBusInterfaceValid;
        QVariant (DBusPendingReply::*reply)() = &DBusPendingReply::getReply;
        QVERIFY(connect && connectStatus && fetch && render && valid && reply);
    }

    void keysAreOneAndTheSameStringAtEachCall()
    {
        using Definitions = ConfigurationAndProcessDataDefinitions;
        using Registry = SystemInformationManagerRegistryDefinitions;
        const QVector<const QString &(*)()> getters{
            &Definitions::getKeyDataPropertyReadOnly,
            &Definitions::getKeyDataPropertySelectorTypeList,
            &Definitions::getSelectorUrlSchemeProcessData,
            &PropertyManagerConst::getProcessDataDescriptionFileExtension,
            &Registry::getKeyModuleName,
            &Registry::getKeyAdditionalData};
        for (const auto getter : getters) {
            QCOMPARE(&getter(), &getter());
            QVERIFY(!getter().isEmpty());
        }
    }

    void aReplyHoldsAValueOrAnError()
    {
        const DBusReply value = DBusReply::fromValue("text");
        QVERIFY(!value.isError());
        QCOMPARE(value.getValue(), QVariant("text"));
        const DBusReply error = DBusReply::fromError("why");
        QVERIFY(error.isError());
        QCOMPARE(error.getErrorMessage(), QString("why"));
        QVERIFY(!error.getValue().isValid());
    }

    void jsonIsReadByKeyAndPath()
    {
        const QJsonObject object{{"a/b", 1}, {"a", QJsonObject{{"b", QJsonArray{2}}}}};
        QJsonValue value;
        QVERIFY(readJsonValue("a/b", object, value)); // a single key, never split
        QCOMPARE(value, QJsonValue(1));
        QVERIFY(!readJsonValue("b", object, value));
        QJsonArray array;
        QVERIFY(readJsonArrayFromJson("a/b", object, array));
        QCOMPARE(array, QJsonArray{2});
        QVERIFY(!readJsonArrayFromJson("a/c", object, array));
        QVERIFY(!readJsonArrayFromJson("a", object, array));
        QCOMPARE(createJsonArrayFromJsonString("[2]"), QJsonArray{2});
        QCOMPARE(createJsonArrayFromJsonString("{}"), QJsonArray());
    }
};

QTEST_GUILESS_MAIN(ContractsTest)
#include "ContractsTest.moc"
