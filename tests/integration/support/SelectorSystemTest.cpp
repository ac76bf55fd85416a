// SPDX-License-Identifier: MIT
// What the tests of the command-line client start with: the system's services and one publisher.
#include "SelectorSystemTest.h"

#include "ProviderListClient.h"

#include <QTest>

void SelectorSystemTest::bringUp(const QJsonArray &elements)
{
    system.reset(new ChildProcess(SIMULATOR, {"--system-services"}));
    QVERIFY2(system->start() && !system->waitForLineWith("ready").isNull(),
             system->report().constData());
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(module, description(elements)));
}

void SelectorSystemTest::cleanup()
{
    publisher.reset();
    system.reset();
    SystemTest::cleanup();
}

bool SelectorSystemTest::isRegistered(const QString &moduleName)
{
    QString list;
    QString error;
    return fetchRegisteredProviderList(list, error) == BusQueryResult::Ok
        && list.contains('"' + moduleName + '"');
}

QStringList SelectorSystemTest::filledIn(QStringList texts) const
{
    return texts.replaceInStrings("MODULE", module);
}

QByteArray SelectorSystemTest::filledIn(QString text) const
{
    return text.replace("MODULE", module).toUtf8();
}
