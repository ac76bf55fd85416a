// SPDX-License-Identifier: MIT
// Every command ends with each exit code that its man page promises.
#include "Files.h"
#include "ProviderListClient.h"
#include "SelectorSystemTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

class SelectorExitCodesTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void commandsEndAsTheirPagesSay_data();
    void commandsEndAsTheirPagesSay();
    void everyCodeThatAPagePromisesHasARow();

private:
    void make(const QString &fault);

    QScopedPointer<QTemporaryDir> folder;
    QScopedPointer<QDBusVirtualObject> registry;
};

namespace {

struct Row
{
    const char *fault;
    const char *arguments;
    int exitCode;
};

// GOOD and NONE are selectors; LIST, BAD and so on are files of the test.
const QVector<Row> rows{
    {"", "modules", 0},
    {"", "browse MODULE", 0},
    {"", "read GOOD", 0},
    {"", "write GOOD 1", 0},
    {"", "watch --count 1 GOOD", 0},
    {"", "properties GOOD", 0},
    {"", "explain GOOD", 0},
    {"", "doctor MODULE", 0},
    {"", "check LIST", 0},
    {"", "snapshot --output OUT MODULE", 0},
    {"", "diff BEFORE BEFORE", 0},
    {"", "apply LIST", 0},
    {"", "complete place MODULE/", 0},

    {"a nameless module", "modules", 1},
    {"", "browse NotHere", 1},
    {"", "read NONE GOOD", 1},
    {"", "write NONE 1", 1},
    {"", "watch --count 1 NONE", 1},
    {"", "properties NONE", 1},
    {"", "explain NONE", 1},
    {"", "doctor NotHere", 1},
    {"", "check BAD", 1},
    {"", "snapshot --output OUT NotHere", 1},
    {"", "diff BEFORE AFTER", 1},
    {"", "apply BAD", 1},

    {"", "modules --wrong", 2},
    {"", "browse --wrong", 2},
    {"", "read", 2},
    {"", "write GOOD", 2},
    {"", "watch", 2},
    {"", "properties", 2},
    {"", "explain", 2},
    {"", "doctor --yes", 2},
    {"", "check", 2},
    {"", "snapshot", 2},
    {"", "diff BEFORE", 2},
    {"", "apply", 2},
    {"", "complete", 2},

    {"no bus", "modules", 3},
    {"no bus", "browse MODULE", 3},
    {"no bus", "read GOOD", 3},
    {"no bus", "write GOOD 1", 3},
    {"no bus", "watch GOOD", 3},
    {"no bus", "properties GOOD", 3},
    {"no bus", "explain GOOD", 3},
    {"no bus", "doctor MODULE", 3},
    {"no bus", "check LIST", 3},
    {"no bus", "snapshot --output OUT", 3},
    {"no bus", "apply LIST", 3},
    {"no registry", "modules", 0},
    {"no registry", "browse", 0},
    {"no registry", "snapshot --output OUT", 0},

    {"a hung service", "modules", 4},
    {"a hung service", "browse MODULE", 4},
    {"a hung service", "browse MODULE/Controller", 4},
    {"a hung service", "browse MODULE/Controller/1", 4},
    {"a hung service", "read GOOD processdata://NotHere/a/1/b", 4},
    {"a hung service", "read MODULE/Controller/1", 4},
    {"a hung service", "read MODULE", 4},
    {"a hung service", "write GOOD 1", 4},
    {"", "watch --count 1000000 GOOD", 4},
    {"a hung service", "watch --count 1 GOOD", 4},
    {"a hung service", "properties GOOD", 4},
    {"a hung service", "explain GOOD", 4},
    {"a hung service", "doctor MODULE", 4},
    {"a hung service", "check LIST", 4},
    {"a hung service", "snapshot --output OUT MODULE", 4},
    {"a hung service", "apply LIST", 4},

    {"a bus that refuses", "modules", 5},
    {"a bus that refuses", "browse MODULE", 5},
    {"a bus that refuses", "read GOOD", 5},
    {"a bus that refuses", "read MODULE/Controller", 5},
    {"a bus that refuses", "write GOOD 1", 5},
    {"a bus that refuses", "watch --count 1 GOOD", 5},
    {"a bus that refuses", "properties GOOD", 5},
    {"a bus that refuses", "explain GOOD", 5},
    {"a bus that refuses", "doctor MODULE", 5},
    {"a bus that refuses", "check LIST", 5},
    {"a bus that refuses", "snapshot --output OUT MODULE", 5},
    {"a bus that refuses", "apply LIST", 5},
};

// The information manager of a system whose registry holds an entry without a name.
class BadRegistry : public QDBusVirtualObject
{
public:
    BadRegistry()
        : name("bad-registry-" + qEnvironmentVariable("PROCESSDATA_BUS"))
    {
        auto connection
            = QDBusConnection::connectToBus(qEnvironmentVariable("PROCESSDATA_BUS"), name);
        connection.registerVirtualObject("/com/orvalis/SystemInformationManager", this);
        connection.registerService("com.orvalis.SystemInformationManager");
    }
    ~BadRegistry() override { QDBusConnection::disconnectFromBus(name); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        return connection.send(message.createReply(QString(R"([{"additionalData":{}}])")));
    }

private:
    const QString name;
};

} // namespace

void SelectorExitCodesTest::init()
{
    SystemTest::init();
    folder.reset(new QTemporaryDir);
    bringUp({leaf("speed", "float64")});
    VERIFY_COMMAND(publisher->publish("speed", 2));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
    const QByteArray head = R"({"module":"M","object":"O","instance":"1","elements":[)";
    QVERIFY(writeFile(folder->filePath("LIST"), selectorUrl(module, "speed").toUtf8() + " 3\n")
            && writeFile(folder->filePath("BAD"), selectorUrl(module, "none").toUtf8() + " 3\n")
            && writeFile(folder->filePath("BEFORE"), head + R"({"name":"a","type":"bool"}]})")
            && writeFile(folder->filePath("AFTER"), head + "]}"));
}

void SelectorExitCodesTest::cleanup()
{
    registry.reset();
    SelectorSystemTest::cleanup();
    folder.reset();
}

void SelectorExitCodesTest::make(const QString &fault)
{
    if (fault == "no bus") {
        bus->stop();
    } else if (fault == "no registry" || fault == "a nameless module") {
        system->kill();
        registry.reset(fault == "no registry" ? nullptr : new BadRegistry);
    } else if (fault == "a hung service") {
        publisher->process().suspend();
        system->suspend();
    } else if (fault == "a bus that refuses") {
        QVERIFY(bus->refuseCalls({"com.orvalis.ProcessDescription1",
                                  "com.orvalis.SystemInformationManager1",
                                  "org.freedesktop.DBus.Introspectable"}));
    }
}

void SelectorExitCodesTest::commandsEndAsTheirPagesSay_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("exitCode");
    for (const Row &row : rows) {
        const QString title = QString("%1, %2").arg(row.arguments, row.fault);
        QTest::newRow(qPrintable(title))
            << QString(row.fault) << QString(row.arguments) << row.exitCode;
    }
}

void SelectorExitCodesTest::commandsEndAsTheirPagesSay()
{
    QFETCH(const QString, fault);
    QFETCH(const QString, arguments);
    QFETCH(const int, exitCode);
    QStringList words = arguments.split(' ');
    words.replaceInStrings(QRegularExpression("^GOOD$"), selectorUrl(module, "speed"));
    words.replaceInStrings(QRegularExpression("^NONE$"), selectorUrl(module, "none"));
    words.replaceInStrings(QRegularExpression("^(LIST|BAD|BEFORE|AFTER|OUT)$"),
                           folder->path() + "/\\1");
    words.replaceInStrings("MODULE", module);
    if (exitCode == 4) {
        words += {"--timeout", "0.5"};
    }
    make(fault);

    ChildProcess client(SELECTOR, words);
    VERIFY_RUN(client, exitCode);
    // Where the modules come from without a registry is said, and is not a failure.
    const bool isNoted = fault == "no registry";
    QVERIFY2((exitCode == 0 && !isNoted) == client.errors().isEmpty(), client.report());
    QCOMPARE(client.errors().contains("whose services run"), isNoted);
}

void SelectorExitCodesTest::everyCodeThatAPagePromisesHasARow()
{
    QSet<QString> covered;
    QSet<QString> commands;
    for (const Row &row : rows) {
        const QString command = QString(row.arguments).section(' ', 0, 0);
        commands.insert(command);
        covered.insert(QString("%1 %2").arg(command).arg(row.exitCode));
    }
    QCOMPARE(commands.size(), 13);
    const QRegularExpression promise(R"((?:^|[;.:] )(\d)[ ,])");
    for (const QString &command : qAsConst(commands)) {
        const QString page
            = QString::fromUtf8(contentOf(QString(MAN_PAGES "/selector-%1.1").arg(command)));
        const QString text = page.section(".SH EXIT STATUS\n", 1).section('\n', 0, 0);
        int count = 0;
        for (auto match = promise.globalMatch(text); match.hasNext(); ++count) {
            const QString wanted = command + ' ' + match.next().captured(1);
            QVERIFY2(covered.contains(wanted), qPrintable("no row of " + wanted));
        }
        QVERIFY2(count >= 2, qPrintable(command));
    }
}

QTEST_GUILESS_MAIN(SelectorExitCodesTest)
#include "SelectorExitCodesTest.moc"
