// SPDX-License-Identifier: MIT
// Forms of a platform's classes, and what they answer without a running system.
#include <ConfigurationAndProcessDataDefinitions.h>
#include <ConfigurationAndProcessDataParser.h>
#include <DBusPendingReply.h>
#include <DBusProcessDescriptionConnector.h>
#include <ErrorContainer.h>
#include <JsonFunctions.h>
#include <ProcessDataManager.h>
#include <ProcessDataValue.h>
#include <ProcessValue.h>
#include <PropertyManagerConst.h>
#include <SelectorUrlHandler.h>
#include <SystemInformationManagerRegistryDefinitions.h>
#include <SystemStatusManagerDBusConnector.h>

#include <QtTest>

#include <type_traits>

using Node = ConfigurationAndProcessDataBase;

// Each with the one signature that the library calls; a platform that lacks one does not compile here.
static_assert(std::is_constructible<ProcessValue, ProcessDataDefinitions::ErrorTypes>::value,
              "a value is made from an error type");
static_assert(std::has_virtual_destructor<ProcessValue>::value, "a value is polymorphic");
static_assert(std::is_copy_constructible<ProcessValue>::value, "a value can be copied");
static_assert(std::is_copy_assignable<ProcessValue>::value, "a value can be assigned");
static_assert(
    std::is_same<Node::ProcessDataValueSharedPointer, QSharedPointer<ProcessDataValue>>::value,
    "leaves are shared");
static_assert(std::is_convertible<ProcessDataValue *, Node *>::value, "a leaf is a node");
static_assert(std::is_default_constructible<ProcessDataManager>::value, "a manager is made fresh");
static_assert(std::has_virtual_destructor<ProcessDataManager>::value, "a manager is polymorphic");
static_assert(std::has_virtual_destructor<SelectorUrlHandler>::value, "a URL is polymorphic");
static_assert(std::is_constructible<SelectorUrlHandler, const QString &>::value,
              "a URL is made from its text");
static_assert(std::is_default_constructible<ErrorContainer>::value, "an error can be empty");
static_assert(std::is_copy_constructible<ErrorContainer>::value, "an error can be copied");
static_assert(std::is_base_of<DBusConnectorBase, DBusProcessDescriptionConnector>::value,
              "the connector of descriptions is a connector");

Q_DECLARE_METATYPE(const QMetaObject *)

class PlatformFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLeafConvertsToItsNodeWithoutAdjustment()
    {
        alignas(16) static char place = 0;
        auto *leaf = reinterpret_cast<ProcessDataValue *>(&place); // never looked into
        QCOMPARE(static_cast<void *>(static_cast<Node *>(leaf)), static_cast<void *>(leaf));
    }

    void keysLiveForTheWholeProcess()
    {
        const QVector<const QString &(*)()> getters{
            &ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly,
            &ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList,
            &ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData,
            &PropertyManagerConst::getProcessDataDescriptionFileExtension,
            &SystemInformationManagerRegistryDefinitions::getKeyModuleName,
            &SystemInformationManagerRegistryDefinitions::getKeyAdditionalData};
        for (const auto getter : getters) {
            QCOMPARE(&getter(), &getter());
            QVERIFY(!getter().isEmpty());
        }
    }

    void connectorsHaveTheSignalsThatTheLibraryConnectsByName_data()
    {
        QTest::addColumn<const QMetaObject *>("metaObject");
        QTest::addColumn<QByteArray>("signature");
        const QMetaObject *connector = &DBusProcessDescriptionConnector::staticMetaObject;
        const QMetaObject *reply = &DBusPendingReply::staticMetaObject;
        QTest::newRow("description")
            << connector << QByteArray("processDataDescriptionChanged(QString)");
        QTest::newRow("property") << connector << QByteArray("propertyChanged(QString)");
        QTest::newRow("finished") << reply << QByteArray("dBusServiceFinished()");
        QTest::newRow("error") << reply << QByteArray("dBusServiceError(ErrorContainer)");
        QTest::newRow("ready") << &SystemStatusManagerDBusConnector::staticMetaObject
                               << QByteArray("orvalisStartupReady()");
    }

    void connectorsHaveTheSignalsThatTheLibraryConnectsByName()
    {
        QFETCH(const QMetaObject *, metaObject);
        QFETCH(QByteArray, signature);
        const int index = metaObject->indexOfSignal(signature);
        QVERIFY2(index >= 0, signature);
        QCOMPARE(int(metaObject->method(index).methodType()), int(QMetaMethod::Signal));
    }

    void anErrorIsAMetaTypeThatCanBePrinted()
    {
        QCOMPARE(QMetaType::typeName(qMetaTypeId<ErrorContainer>()), "ErrorContainer");
        QString text;
        QDebug(&text) << ErrorContainer();
        QVERIFY(!text.isEmpty());
    }

    void textThatIsNoUrlIsInvalidAndParsesAllTheSame()
    {
        const SelectorUrlHandler url(QStringLiteral(" no selector "));
        QVERIFY(!url.isValid());
        QVERIFY(!url.isSelectorDeactivated());
    }

    void aNullNodeIsRenderedWithoutHarm()
    {
        QByteArray bytes;
        const ConfigurationAndProcessDataParser parser;
        const QSharedPointer<Node> none;
        QVERIFY(!parser.frameToByteArray(none, bytes, QJsonDocument::Compact));
        QVERIFY(bytes.isEmpty());
    }

    void aDescriptionThatIsNoneIsRefused()
    {
        ProcessDataManager manager;
        const auto attach = static_cast<ProcessDataManager::InitTypeSharedMemory>(1);
        const QString extension = PropertyManagerConst::getProcessDataDescriptionFileExtension();
        QVERIFY(manager.createProcessDataFromJson(QStringLiteral("{"), extension, attach).isNull());
        QVERIFY(!manager.isBufferValid());
    }
};

QTEST_GUILESS_MAIN(PlatformFormTest)
#include "platform-form-test.moc"
