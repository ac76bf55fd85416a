// SPDX-License-Identifier: MIT
// What is offered for a line: what the command would refuse is not.
#include "LineCompletion.h"

#include <QtTest>

class LineCompletionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesGoOn_data();
    void linesGoOn();
};

void LineCompletionTest::linesGoOn_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("words");
    const auto offers = [](const char *line, Arguments::Kind kind, const char *words = "") {
        QTest::newRow(line) << line << int(kind) << words;
    };
    const auto nothing = [&](const char *line) { offers(line, Arguments::Words); };
    offers("w", Arguments::Words, "write watch");
    const bool withHistory = !historyCommands().isEmpty();
    offers("h", Arguments::Words, withHistory ? "history help" : "help");
    if (withHistory) {
        offers("record ", Arguments::File);
        offers("record h.db ", Arguments::Url);
        offers("record --every 1s h.db a b", Arguments::Url);
        offers("history --database ", Arguments::File);
        offers("history --database h.db ", Arguments::Url);
        offers("history --aggregate m", Arguments::Words, "min max mean");
    }
    offers("-", Arguments::Words,
           "--format --help --json --no-legend --verbose --width -h -j -v --version");
    offers("--v", Arguments::Words, "--verbose --version");
    offers("-j w", Arguments::Words, "write watch");
    offers("--format c", Arguments::Words, "csv");
    offers("--format csv w", Arguments::Words, "write watch");
    offers("--format csv read a", Arguments::Url);
    offers("--timeout 3 browse ", Arguments::Place);
    offers("help w", Arguments::Words, "write watch");
    nothing("help write w");
    nothing("nonsense --");
    offers(
        "read -", Arguments::Words,
        "--file --format --help --json --max-age --no-legend --quiet --timeout --verbose --width --writable "
        "-f -h -j -q -v");
    offers("read --format=", Arguments::Words,
           "--format=table --format=json --format=csv --format=pairs");
    nothing("read --quiet=");
    offers("modules --type=D", Arguments::Words, "--type=DigitalSelector");
    offers("check --against=r", Arguments::File);
    offers("check --against ", Arguments::File);
    offers("snapshot -o ", Arguments::File);
    offers("diff -f list ", Arguments::File);
    nothing("watch --interval ");
    nothing("read --timeout -");
    offers("read ", Arguments::Url);
    offers("read -q a", Arguments::Url);
    offers("read a b", Arguments::Url);
    offers("read x=a", Arguments::Url);
    offers("watch x=a", Arguments::Url);
    offers("watch --until changed --count 3 a b", Arguments::Url);
    nothing("modules ");
    offers("browse ", Arguments::Place);
    offers("browse --timeout 3 ", Arguments::Place);
    nothing("browse a ");
    offers("explain ", Arguments::Url);
    offers("explain --property unit a", Arguments::Url);
    offers("explain a b", Arguments::Url);
    offers("write a", Arguments::UrlAndValue);
    offers("write x=a", Arguments::UrlAndValue);
    nothing("write a ");
    offers("write a 1 b", Arguments::UrlAndValue);
    offers("write a -1 b", Arguments::UrlAndValue);
    offers("write a/b=1 b", Arguments::UrlAndValue);
    nothing("write a/b=1 b ");
    nothing("write -f list a 1 b 2");
    offers("snapshot a b", Arguments::Place);
    offers("doctor ", Arguments::Module);
    offers("doctor a b", Arguments::Module);
    offers("check ", Arguments::File);
    nothing("check a ");
    nothing("check - ");
    nothing("apply --verify a ");
    offers("diff a ", Arguments::File);
    nothing("diff a b ");
    offers("complete p", Arguments::Words, "place");
    nothing("complete place a");
}

void LineCompletionTest::linesGoOn()
{
    QFETCH(QString, line);
    QFETCH(int, kind);
    QFETCH(QString, words);

    const Offer offer = offerFor(line.split(' '));

    QCOMPARE(offer.words.join(' '), words);
    QCOMPARE(int(offer.kind), kind);
}

QTEST_APPLESS_MAIN(LineCompletionTest)
#include "LineCompletionTest.moc"
