// SPDX-License-Identifier: MIT
// A platform on a running system: descriptions, announcement of their arrival, leaves, values.
//
// environment: CONTRACT_URL  selector URL of a leaf that is published now, and that may be written
#include <ConfigurationAndProcessDataDefinitions.h>
#include <ConfigurationAndProcessDataParser.h>
#include <DBusPendingReply.h>
#include <DBusProcessDescriptionConnector.h>
#include <ErrorContainer.h>
#include <ProcessDataManager.h>
#include <ProcessDataValue.h>
#include <ProcessValue.h>
#include <PropertyManagerConst.h>
#include <SelectorUrlHandler.h>
#include <SystemStatusManagerDBusConnector.h>

#include <QtTest>

namespace {

constexpr int patience = 20000; // ms

using Node = QSharedPointer<ConfigurationAndProcessDataBase>;
using Leaf = ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer;

ProcessValue noValue()
{
    return ProcessValue(static_cast<ProcessDataDefinitions::ErrorTypes>(3));
}

} // namespace

class PlatformLiveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString text = qEnvironmentVariable("CONTRACT_URL");
        QVERIFY2(!text.isEmpty(), "CONTRACT_URL must name a published leaf that may be written");
        url.reset(new SelectorUrlHandler(text));
        QVERIFY(url->isValid());
        QVERIFY(!url->isSelectorDeactivated());
        QCOMPARE(url->getScheme(),
                 ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData());
        connector = DBusProcessDescriptionConnector::createAndConnect(url->getModuleName(),
                                                                      url->getObjectName());
        QVERIFY(!connector.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(connector->isDBusInterfaceValid(), patience);
    }

    void cleanupTestCase()
    {
        connector.clear();
        url.clear();
    }

    void aDescriptionIsFetchedAndWaitedFor()
    {
        const DBusReply reply = connector->getProcessDataDescription(url->getInstance(), QString());
        QVERIFY2(!reply.isError(),
                 qPrintable(reply.isError() ? reply.getErrorMessage() : QString()));
        QVERIFY(reply.getValue().isValid());
    }

    void anUnknownInstanceIsAnErrorWithAReason()
    {
        const DBusReply reply
            = connector->getProcessDataDescription(QStringLiteral("no such instance"), QString());
        QVERIFY(reply.isError());
        QVERIFY(!reply.getErrorMessage().isEmpty());
    }

    void aDescriptionArrivesLaterAndIsToldOnce()
    {
        const auto first
            = connector->getProcessDataDescriptionAsynchron(url->getInstance(), QString());
        QVERIFY(!first.isNull());
        QVERIFY(!first->getReply().isValid()); // never from within the call
        QSignalSpy finished(first.data(), SIGNAL(dBusServiceFinished()));
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, patience);
        QCOMPARE(first->getReply().toString(), description().toString());

        // Its end shows that the first had all the time to report twice.
        const auto second
            = connector->getProcessDataDescriptionAsynchron(url->getInstance(), QString());
        QSignalSpy secondFinished(second.data(), SIGNAL(dBusServiceFinished()));
        QTRY_COMPARE_WITH_TIMEOUT(secondFinished.count(), 1, patience);
        QCOMPARE(finished.count(), 1);
    }

    void aFailedCallTellsItsErrorOnce()
    {
        const auto reply = connector->getProcessDataDescriptionAsynchron(
            QStringLiteral("no such instance"), QString());
        QVERIFY(!reply.isNull());
        QSignalSpy finished(reply.data(), SIGNAL(dBusServiceFinished()));
        QSignalSpy failed(reply.data(), SIGNAL(dBusServiceError(ErrorContainer)));
        QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, patience);
        QCOMPARE(finished.count(), 0);
        QVERIFY(!reply->getReply().isValid());
    }

    void aReleasedReplyNeverReports()
    {
        auto released
            = connector->getProcessDataDescriptionAsynchron(url->getInstance(), QString());
        int reports = 0;
        connect(released.data(), &DBusPendingReply::dBusServiceFinished, this, [&] { ++reports; });
        released.clear();
        const auto next
            = connector->getProcessDataDescriptionAsynchron(url->getInstance(), QString());
        QSignalSpy finished(next.data(), SIGNAL(dBusServiceFinished()));
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, patience);
        QCOMPARE(reports, 0);
    }

    void aLeafIsFoundByItsUrlAndStaysTheSame()
    {
        ProcessDataManager manager;
        const Node root = attach(manager);
        QVERIFY(!root.isNull());
        QVERIFY(manager.isBufferValid());
        const Leaf leaf = root->getLeafProcessDataValue(url->getUrl());
        QVERIFY(!leaf.isNull());
        QCOMPARE(root->getLeafProcessDataValue(url->getUrl()), leaf);
        QVERIFY(root->getLeafProcessDataValue(url->getUrl() + "-no-such-leaf").isNull());
    }

    void aValueIsReadAndWrittenBack()
    {
        ProcessDataManager manager;
        const Node root = attach(manager);
        const Leaf leaf = root->getLeafProcessDataValue(url->getUrl());
        QVERIFY(!leaf.isNull());
        const QString readOnly
            = ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly();
        QVERIFY2(!leaf->readLeafProperty(readOnly).toBool(), "CONTRACT_URL must be writable");
        ProcessValue value = noValue();
        QVERIFY(leaf->getValue(value, false));
        QVERIFY2(leaf->setValue(value), "what was read can be written");
    }

    void aLeafOutlivesItsManager()
    {
        QScopedPointer<ProcessDataManager> manager(new ProcessDataManager);
        Node root = attach(*manager);
        const Leaf leaf = root->getLeafProcessDataValue(url->getUrl());
        QVERIFY(!leaf.isNull());
        manager.reset();
        root.clear();
        ProcessValue value = noValue();
        QVERIFY(leaf->getValue(value, false));
    }

    void aLeafTellsItsProperties()
    {
        ProcessDataManager manager;
        const Node root = attach(manager);
        const Leaf leaf = root->getLeafProcessDataValue(url->getUrl());
        QVERIFY(!leaf.isNull());
        const QString unknown = QStringLiteral("no such property");
        QVERIFY(!leaf->hasLeafProperty(unknown));
        QVERIFY(!leaf->readLeafProperty(unknown).isValid());
    }

    void equalLeavesRenderToEqualText()
    {
        ProcessDataManager firstManager, secondManager;
        const Node firstRoot = attach(firstManager);
        const Node secondRoot = attach(secondManager);
        const QByteArray first = rendered(firstRoot->getLeafProcessDataValue(url->getUrl()));
        QVERIFY(QJsonDocument::fromJson(first).isObject());
        QCOMPARE(rendered(secondRoot->getLeafProcessDataValue(url->getUrl())), first);
    }

    void aSystemThatIsUpIsTold()
    {
        const auto status = SystemStatusManagerDBusConnector::createAndConnect();
        QVERIFY(!status.isNull());
        QSignalSpy ready(status.data(), SIGNAL(orvalisStartupReady()));
        QTRY_COMPARE_WITH_TIMEOUT(ready.count(), 1, patience);
    }

private:
    QVariant description() const
    {
        return connector->getProcessDataDescription(url->getInstance(), QString()).getValue();
    }

    Node attach(ProcessDataManager &manager) const
    {
        return manager.createProcessDataFromJson(
            description(), PropertyManagerConst::getProcessDataDescriptionFileExtension(),
            static_cast<ProcessDataManager::InitTypeSharedMemory>(1));
    }

    static QByteArray rendered(const Node &node)
    {
        QByteArray bytes;
        const ConfigurationAndProcessDataParser parser;
        parser.frameToByteArray(node, bytes, QJsonDocument::Compact);
        return bytes;
    }

    QSharedPointer<SelectorUrlHandler> url;
    QSharedPointer<DBusProcessDescriptionConnector> connector;
};

QTEST_GUILESS_MAIN(PlatformLiveTest)
#include "platform-live-test.moc"
