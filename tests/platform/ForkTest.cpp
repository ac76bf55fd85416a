// SPDX-License-Identifier: MIT
// What publishers and clients do in a process that was forked from theirs: nothing, and it says so.
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "PublisherSupport.h"

#include <QSignalSpy>
#include <QtTest>

#include <csignal>
#include <functional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int patience = 20'000; // milliseconds; who hangs takes all of it

// What a forked child warned of while it did something; "hangs" when it had to be killed.
struct ForkedChild
{
    explicit ForkedChild(const std::function<bool()> &deed)
    {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) {
            return;
        }
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            output = ends[1];
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
                const QByteArray line = text.toUtf8() + '\n';
                static_cast<void>(!write(output, line.constData(), size_t(line.size())));
            });
            _exit(deed() ? 0 : 1);
        }
        close(ends[1]);
        collect(ends[0], child);
        close(ends[0]);
    }

    void collect(int input, pid_t child)
    {
        pollfd waiting{input, POLLIN, 0};
        char part[1024];
        for (;;) {
            const bool ready = poll(&waiting, 1, patience) > 0;
            const ssize_t got = ready ? read(input, part, sizeof(part)) : -1;
            if (got <= 0) {
                if (!ready) {
                    kill(child, SIGKILL);
                    said += "hangs";
                }
                break;
            }
            said.append(part, int(got));
        }
        waitpid(child, &status, 0);
    }

    static int output;
    QByteArray said;
    int status = -1;
};

int ForkedChild::output = -1;

const QByteArray refused
    = "This process was forked after its parent made a %1 and does nothing with "
      "it: fork first, or end the child with _exit or exec\n";

QByteArray refusal(const char *what)
{
    return QByteArray(refused).replace("%1", what);
}

}

class ForkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void init() { module = uniqueModule(); }
    void cleanup() { QCOMPARE(buffersOf(module), QStringList()); }
    void aChildBeforeAllElsePublishesAndReads();
    void aChildDoesNotPublishForItsParent();
    void aChildDoesNotEndItsParentsPublisher();
    void aChildMakesNoPublisherBesideItsParents();
    void aChildReadsValuesAndFetchesNothing();
    void aChildMakesNoPendingFetch();

private:
    PrivateBus bus;
    QString module;
};

// First: what the process has done before a fork cannot be taken back.
void ForkTest::aChildBeforeAllElsePublishesAndReads()
{
    const ForkedChild child([this] {
        const auto publisher
            = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
        TestClient client(module, "Controller", "1");
        return publisher && publisher->publish("drive/speed", 7) && client.attach()
            && client.read("drive/speed").getValue() == QVariant(7);
    });
    QCOMPARE(child.said, QByteArray());
    QCOMPARE(child.status, 0);
    removeLeftBuffers(module); // its end was no publisher's end
}

void ForkTest::aChildDoesNotPublishForItsParent()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(publisher && publisher->publish("drive/speed", 1));

    const ForkedChild child([&] {
        QString error;
        return !publisher->publish("drive/speed", 2) && !publisher->publish("drive/speed", 3)
            && !publisher->replaceProperties(pumpDescription(), &error)
            && error.endsWith("it belongs to the process that this one was forked from")
            && !publisher->replaceDescription(pumpDescription(), &error);
    });

    QCOMPARE(child.said, refusal("publisher"));
    QCOMPARE(child.status, 0);
    QCOMPARE(publisher->value("drive/speed").getValue(), QVariant(1));
    QVERIFY(publisher->publish("drive/speed", 4));
}

void ForkTest::aChildDoesNotEndItsParentsPublisher()
{
    auto publisher = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(publisher);

    const ForkedChild child([&] {
        publisher.reset();
        return true;
    });

    QCOMPARE(child.said, refusal("bus connection"));
    QCOMPARE(child.status, 0);
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());
    QVERIFY(publisher->publish("drive/speed", 4));
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(4));
}

void ForkTest::aChildMakesNoPublisherBesideItsParents()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(publisher);

    const ForkedChild child([this] {
        QString error;
        const auto own = ProcessDataPublisher::create(module + "2", "Controller", "1",
                                                      pumpDescription(), &error);
        return !own && error.contains("forked after its parent had published; fork first");
    });

    QCOMPARE(child.said, refusal("bus connection"));
    QCOMPARE(child.status, 0);
}

void ForkTest::aChildReadsValuesAndFetchesNothing()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(publisher && publisher->publish("drive/speed", 1));
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());

    const ForkedChild child([&] {
        const bool reads = client.read("drive/speed").getValue() == QVariant(1);
        const DBusReply reply = client.connector->getProcessDataDescription("1", QString());
        const bool refuses
            = reply.getErrorMessage().contains("forked after its parent had connected");
        client.connector.reset();
        return reads && refuses;
    });

    QVERIFY2(child.said.startsWith(refusal("bus connection")), child.said);
    QCOMPARE(child.said.count("This process was forked"), 1);
    QCOMPARE(child.status, 0);
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(1));
}

void ForkTest::aChildMakesNoPendingFetch()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    TestClient client(module, "Controller", "1");
    QVERIFY(publisher && client.attach());
    const ForkedChild child([&] {
        return client.connector->getProcessDataDescriptionAsynchron("1", QString()).isNull();
    });
    QCOMPARE(child.said, refusal("bus connection"));
    QCOMPARE(child.status, 0);
}

BUS_TEST_MAIN(ForkTest)
#include "ForkTest.moc"
