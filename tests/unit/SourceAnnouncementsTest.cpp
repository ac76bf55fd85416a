// SPDX-License-Identifier: MIT
// Announcements of a source: filter, asynchronous fetch, signal with the source's key.
#include "Internals.h"
#include "SelectorSharedMemoryHandler.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QSignalSpy>
#include <QtTest>

OPEN_MEMBER(SelectorSharedMemoryHandler, connector)
OPEN_MEMBER(SelectorSharedMemoryHandler, pendingReply)

namespace {

// The two kinds of announcement behave alike up to the names of their slots and signals.
struct Kind
{
    QByteArray name;
    void announce(ScriptedSource &script, const QString &instance = "1") const
    {
        if (name == "propertyChanged") {
            script.announceProperties(instance);
        } else {
            script.announceDescription(instance);
        }
    }
};

struct Source
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    QScopedPointer<SelectorSharedMemoryHandler> handler{
        new SelectorSharedMemoryHandler("the key", "boiler", "sensors", "1", nullptr)};
    QSignalSpy descriptions{handler.data(), SIGNAL(processDataDescriptionChanged(QString))};
    QSignalSpy properties{handler.data(), SIGNAL(propertyChanged(QString))};
    WarningLog warnings;

    Source() { platform.forgetCalls(); }
    const QSignalSpy &own(const Kind &kind) const
    {
        return kind.name == "propertyChanged" ? properties : descriptions;
    }
    const QSignalSpy &other(const Kind &kind) const
    {
        return kind.name == "propertyChanged" ? descriptions : properties;
    }
};

void bothKinds()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::newRow("description") << QByteArray("processDataDescriptionChanged");
    QTest::newRow("properties") << QByteArray("propertyChanged");
}

Kind fetchedKind()
{
    const auto name = *static_cast<QByteArray *>(QTest::qData("kind", qMetaTypeId<QByteArray>()));
    return Kind{name};
}

} // namespace

class SourceAnnouncementsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAnnouncementFetchesAndThenSignalsTheKey_data() { bothKinds(); }
    void anAnnouncementFetchesAndThenSignalsTheKey()
    {
        const Kind kind = fetchedKind();
        Source source;

        kind.announce(source.script);

        QCOMPARE(source.platform.calls(),
                 QStringList{"DBusProcessDescriptionConnector[boiler/sensors]"
                             "::getProcessDataDescriptionAsynchron('1', '')"});
        QCOMPARE(source.own(kind).size(), 0);
        source.platform.forgetCalls();

        source.script.reply(0).finish("new description");

        QCOMPARE(source.own(kind), (QList<QVariantList>{{"the key"}}));
        QCOMPARE(source.other(kind).size(), 0);
        QCOMPARE(source.handler->getProcessDescription(), QVariant("new description"));
        // Neither the tree nor the list of positions is touched.
        QCOMPARE(source.platform.calls(), QStringList{"DBusPendingReply[1]::getReply()"});
        QCOMPARE(source.handler->getConnectedLeafIndexList(), QVector<int>());
        QCOMPARE(source.warnings.texts(), QStringList());
        QVERIFY(source.script.reply(0).isAlive());
    }

    void anotherInstancesAnnouncementDoesNothing_data() { bothKinds(); }
    void anotherInstancesAnnouncementDoesNothing()
    {
        const Kind kind = fetchedKind();
        Source source;

        for (const QString instance : {"2", "", "1 ", "01", "\u0661"}) {
            kind.announce(source.script, instance);
        }

        QCOMPARE(source.platform.calls(), QStringList());
        QCOMPARE(source.warnings.texts(), QStringList());
        kind.announce(source.script);
        QCOMPARE(source.script.replyCount(), 1);
    }

    void instancesAreToldApartByCase_data() { bothKinds(); }
    void instancesAreToldApartByCase()
    {
        const Kind kind = fetchedKind();
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "North");
        SelectorSharedMemoryHandler handler("k", "boiler", "sensors", "North", nullptr);
        const WarningLog warnings;
        kind.announce(script, "north");
        QCOMPARE(script.replyCount(), 0);
        kind.announce(script, "North");
        QCOMPARE(script.replyCount(), 1);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theInstanceIsComparedBeforeTheConnectorIsLookedAt_data() { bothKinds(); }
    void theInstanceIsComparedBeforeTheConnectorIsLookedAt()
    {
        const Kind kind = fetchedKind();
        Source source;
        kind.announce(source.script);
        (*source.handler).*memberOf(SelectorSharedMemoryHandler_connector()) = {};
        source.warnings.clear();

        QVERIFY(QMetaObject::invokeMethod(source.handler.data(), (kind.name + "Intern").constData(),
                                          Q_ARG(QString, "2")));
        QCOMPARE(source.warnings.texts(), QStringList());

        QVERIFY(QMetaObject::invokeMethod(source.handler.data(), (kind.name + "Intern").constData(),
                                          Q_ARG(QString, "1")));
        QCOMPARE(source.warnings.texts(), QStringList{"Invalid pointer to connector!"});
        QVERIFY(source.script.reply(0).isAlive()); // the pending reply stays as it was
        QCOMPARE(source.own(kind).size(), 0);
    }

    void aCallThatCannotBePlacedReleasesThePreviousReply_data() { bothKinds(); }
    void aCallThatCannotBePlacedReleasesThePreviousReply()
    {
        const Kind kind = fetchedKind();
        Source source;
        kind.announce(source.script);
        source.script.asynchronousCallsMissing();

        kind.announce(source.script);

        QCOMPARE(source.warnings.texts(),
                 QStringList{"Invalid Reply Pointer pointer for get dbug "
                             "description for sharedMemory \"1\""});
        QVERIFY(!source.script.reply(0).isAlive());
        QVERIFY(((*source.handler).*memberOf(SelectorSharedMemoryHandler_pendingReply())).isNull());
        QCOMPARE(source.own(kind).size(), 0);
    }

    void aReplyWithoutADescriptionIsReportedAndChangesNothing_data() { bothKinds(); }
    void aReplyWithoutADescriptionIsReportedAndChangesNothing()
    {
        const Kind kind = fetchedKind();
        Source source;
        QVERIFY(source.handler->attachToProcessBuffer());
        kind.announce(source.script);

        source.script.reply(0).finish(QVariant());

        QCOMPARE(source.warnings.texts(),
                 QStringList{"Invalid Processdescription received \"the key\""});
        QCOMPARE(source.own(kind).size(), 0);
        QCOMPARE(source.handler->getProcessDescription(),
                 QVariant("description of boiler/sensors/1"));
        QVERIFY(source.script.reply(0).isAlive());
    }

    void aFailedCallIsReportedAndChangesNothing_data() { bothKinds(); }
    void aFailedCallIsReportedAndChangesNothing()
    {
        const Kind kind = fetchedKind();
        Source source;
        QVERIFY(source.handler->attachToProcessBuffer());
        kind.announce(source.script);
        source.platform.forgetCalls();

        source.script.reply(0).fail(ErrorContainer(17, "service left"));

        QCOMPARE(source.warnings.texts(),
                 QStringList{"DBus error ErrorContainer(17, \"service left\")"});
        QCOMPARE(source.own(kind).size() + source.other(kind).size(), 0);
        QCOMPARE(source.platform.calls(), QStringList());
        QCOMPARE(source.handler->getProcessDescription(),
                 QVariant("description of boiler/sensors/1"));
        QVERIFY(source.script.reply(0).isAlive());

        kind.announce(source.script); // and the source goes on
        source.script.reply(1).finish("later");
        QCOMPARE(source.own(kind).size(), 1);
    }

    void aSecondAnnouncementReplacesTheFirstRequest_data() { bothKinds(); }
    void aSecondAnnouncementReplacesTheFirstRequest()
    {
        const Kind kind = fetchedKind();
        Source source;
        kind.announce(source.script);
        source.platform.forgetCalls();

        kind.announce(source.script);

        QCOMPARE(source.platform.calls(),
                 (QStringList{"DBusProcessDescriptionConnector[boiler/sensors]"
                              "::getProcessDataDescriptionAsynchron('1', '')",
                              "~DBusPendingReply[1]"}));
        source.script.reply(0).finish("first"); // released: never reports
        QCOMPARE(source.own(kind).size(), 0);
        source.script.reply(1).finish("second");
        QCOMPARE(source.own(kind).size(), 1);
        QCOMPARE(source.handler->getProcessDescription(), QVariant("second"));
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void anEarlierReplyThatLivesOnReadsTheNewerOne_data() { bothKinds(); }
    void anEarlierReplyThatLivesOnReadsTheNewerOne()
    {
        const Kind kind = fetchedKind();
        Source source;
        kind.announce(source.script);
        const QSharedPointer<DBusPendingReply> kept = source.script.reply(0).keep();
        kind.announce(source.script);

        source.script.reply(0).finish("first"); // the newer one has not ended
        QCOMPARE(source.warnings.texts(),
                 QStringList{"Invalid Processdescription received \"the key\""});
        QCOMPARE(source.own(kind).size(), 0);

        source.script.reply(1).setValue("second");
        source.script.reply(0).finish("first");
        QCOMPARE(source.own(kind).size(), 1);
        QCOMPARE(source.handler->getProcessDescription(), QVariant("second"));
    }

    void bothKindsShareOnePendingReply()
    {
        Source source;
        source.script.announceDescription();
        source.script.announceProperties();

        QVERIFY(!source.script.reply(0).isAlive());
        source.script.reply(1).finish("by properties");

        QCOMPARE(source.properties.size(), 1);
        QCOMPARE(source.descriptions.size(), 0);
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void theDescriptionThatArrivedServesWhenTheNextFetchFails()
    {
        Source source;
        source.script.announceProperties();
        source.script.reply(0).finish("came by itself");
        source.script.fetchesFail("busy");
        source.platform.forgetCalls();

        QVERIFY(source.handler->attachToProcessBuffer());

        QVERIFY(source.platform.calls({"ProcessDataManager"})
                    .contains("ProcessDataManager[1]::createProcessDataFromJson("
                              "'came by itself', 'script', 1)"));
    }

    void aReplyMayEndMoreThanOnceWithoutHarm()
    {
        Source source;
        source.script.announceDescription();
        source.script.reply(0).finish("one");
        source.script.reply(0).finish("two");
        QCOMPARE(source.descriptions.size(), 2);
        QCOMPARE(source.handler->getProcessDescription(), QVariant("two"));
    }
};

QTEST_GUILESS_MAIN(SourceAnnouncementsTest)
#include "SourceAnnouncementsTest.moc"
