// SPDX-License-Identifier: MIT
// Selector lists held against snapshots.
#include "LeafCheck.h"
#include "Files.h"
#include "Snapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QJsonObject served{
    {"module", "M"},
    {"object", "O"},
    {"instance", "1"},
    {"session", 7},
    {"buffer", QJsonObject{{"name", "/x"}, {"generation", 7}}},
    {"elements",
     QJsonArray{QJsonObject{{"name", "speed"}, {"type", "int32"}, {"maximum", 10}, {"offset", 192}},
                QJsonObject{{"name", "group"},
                            {"elements",
                             QJsonArray{QJsonObject{{"name", "a b"},
                                                    {"type", "string"},
                                                    {"capacity", 4},
                                                    {"readOnly", true},
                                                    {"offset", 256}}}}}}}};

QVector<ListLine> linesOf(QString text)
{
    QTextStream stream(&text);
    QVector<ListLine> lines;
    QString error;
    return readListLines(stream, Escapes::Marked, lines, error) ? lines : QVector<ListLine>();
}

} // namespace

class LeafCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachLineIsJudged_data();
    void eachLineIsJudged();
    void anEarlierLineIsNamed();
    void listsAreReadWithTheirLineNumbers();
    void snapshotsKeepWhatASimulatorNeeds();
    void aGroupAloneIsKept();
    void severalPlacesAreKept();
    void whatNoUrlCanNameIsNoLeaf();
    void brokenSnapshotsAreNamed_data();
    void brokenSnapshotsAreNamed();
    void fileNamesAreUniqueAndSafe();

private:
    Snapshot loaded() const;
};

Snapshot LeafCheckTest::loaded() const
{
    const QTemporaryDir directory;
    Snapshot snapshot;
    QString error;
    return writeFile(directory.filePath("a.pdd"), QJsonDocument(snapshotOf(served, {})).toJson())
            && Snapshot::load(directory.path(), snapshot, error)
        ? snapshot
        : Snapshot();
}

void LeafCheckTest::eachLineIsJudged_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *line, const char *code, const char *text) {
        QTest::newRow(line) << code << text;
    };
    row("processdata://M/O/1/speed", "", "");
    row("processdata://M/O/1/speed 10", "", "");
    row("processdata://M/O/1/speed   11", "valueRefused", "\"11\" is above the maximum 10");
    row("processdata://M/O/1/speed fast", "valueRefused",
        "\"fast\" is not an integer, as int32 needs");
    row("processdata://M/O/1/group/a%20b", "", "");
    row("processdata://M/O/1/group/a%20b x", "readOnly", "the leaf is read-only");
    row("processdata://M/O/1/group%2Fa%20b", "noSuchLeaf", "M/O/1 has no such leaf");
    row("processdata://M/O/1/Speed", "noSuchLeaf", "M/O/1 has no such leaf");
    row("processdata://M/O/2/speed", "noSuchInstance", "the snapshot has no M/O/2");
    row("processdata://M/O/1/speed?deactivated", "deactivated", "deactivated");
    row("http://M/O/1/speed", "wrongScheme", "the scheme is \"http\", not \"processdata\"");
    row("processdata://M/O", "invalidUrl",
        "no valid selector URL (processdata://MODULE/OBJECT/INSTANCE/…/LEAF)");
}

void LeafCheckTest::eachLineIsJudged()
{
    QFETCH(QString, code);
    QFETCH(QString, text);
    const Snapshot snapshot = loaded();

    const auto checked = checkLines(linesOf(QTest::currentDataTag()),
                                    [&](int position, const SelectorUrlParts &parts) {
                                        return position == 0 ? snapshot.find(parts) : FoundLeaf();
                                    });

    QCOMPARE(checked.size(), 1);
    QCOMPARE(checked.first().finding.codeName(), code);
    QCOMPARE(checked.first().finding.text, text);
}

void LeafCheckTest::anEarlierLineIsNamed()
{
    const Snapshot snapshot = loaded();
    const QString list("# one\nprocessdata://M/O/1/speed\nprocessdata://M/O/1/speed?deactivated\n\n"
                       "processdata://M/O/1/%73peed\nprocessdata://M/O/1/speed\n");

    QStringList found;
    for (const CheckedLine &one :
         checkLines(linesOf(list), [&](int /*position*/, const SelectorUrlParts &parts) {
             return snapshot.find(parts);
         })) {
        found.append(QString("%1 %2").arg(one.line.number).arg(one.finding.text));
    }

    QCOMPARE(found,
             (QStringList{"2 ", "3 deactivated", "5 line 2 names the same leaf",
                          "6 line 2 names the same leaf"}));
}

void LeafCheckTest::listsAreReadWithTheirLineNumbers()
{
    const QString list("\n# note\n  a \t b  c \n\nx\n");

    const QVector<ListLine> lines = linesOf(list);

    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.first().number, 3);
    QCOMPARE(lines.first().url, QString("processdata://a"));
    QCOMPARE(lines.first().value, QString("b  c"));
    QVERIFY(lines.first().hasValue);
    QCOMPARE(lines.last().number, 5);
    QVERIFY(!lines.last().hasValue);

    QString error;
    QVector<ListLine> none;
    QVERIFY(!readListFile("/nowhere/list", none, error));
    QCOMPARE(error, QString("/nowhere/list: No such file or directory"));
}

void LeafCheckTest::snapshotsKeepWhatASimulatorNeeds()
{
    const QJsonObject kept = snapshotOf(served, {{"speed", 5}, {"elsewhere", 1}});

    const QJsonObject expected{
        {"module", "M"},
        {"object", "O"},
        {"instance", "1"},
        {"elements",
         QJsonArray{QJsonObject{{"name", "speed"},
                                {"type", "int32"},
                                {"maximum", 10},
                                {"simulate", QJsonObject{{"kind", "constant"}, {"value", 5}}}},
                    QJsonObject{{"name", "group"},
                                {"elements",
                                 QJsonArray{QJsonObject{{"name", "a b"},
                                                        {"type", "string"},
                                                        {"capacity", 4},
                                                        {"readOnly", true}}}}}}}};
    QCOMPARE(QJsonDocument(kept).toJson(), QJsonDocument(expected).toJson());
}

void LeafCheckTest::aGroupAloneIsKept()
{
    const auto leavesOf = [](const QString &group) {
        SelectorPattern chosen;
        QString error;
        QStringList paths;
        if (!SelectorPattern::parse("M/O/1/" + group, chosen, error)) {
            return QStringList(error);
        }
        for (const DescribedLeaf &leaf : leavesBelow(snapshotOf(served, {}, {chosen}), QString())) {
            paths.append(leaf.path);
        }
        return paths;
    };
    QCOMPARE(leavesOf(""), QStringList({"speed", "group/a b"}));
    QCOMPARE(leavesOf("group"), QStringList{"group/a b"});
    QCOMPARE(leavesOf("group/a b"), QStringList{"group/a b"});
    QCOMPARE(leavesOf("speed"), QStringList{"speed"});
    QCOMPARE(leavesOf("gro"), QStringList());
    QCOMPARE(leavesOf("gr*/**"), QStringList{"group/a b"});
}

void LeafCheckTest::severalPlacesAreKept()
{
    QVector<SelectorPattern> chosen(2);
    QString error;
    QVERIFY(SelectorPattern::parse("M/O/1/group/a b", chosen[0], error));
    QVERIFY(SelectorPattern::parse("M/O/1/speed", chosen[1], error));

    QCOMPARE(leavesBelow(snapshotOf(served, {}, chosen), QString()).size(), 2);
}

void LeafCheckTest::whatNoUrlCanNameIsNoLeaf()
{
    const auto descriptionWith = [](const QString &group) {
        const QJsonObject leaf{{"name", "x"}, {"type", "bool"}};
        return QJsonObject{
            {"elements",
             QJsonArray{QJsonObject{{"name", group}, {"elements", QJsonArray{leaf}}}, leaf}}};
    };
    QCOMPARE(leavesBelow(descriptionWith(QString(4094, 'g')), QString()).size(), 2);
    QCOMPARE(leavesBelow(descriptionWith(QString(4095, 'g')), QString()).size(), 1);
    QCOMPARE(leavesBelow(descriptionWith(QString(5000, 'g')), QString()).size(), 1);
}

void LeafCheckTest::brokenSnapshotsAreNamed_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("error");
    const QByteArray good = R"({"module":"M","object":"O","instance":"1","elements":[]})";
    QTest::newRow("no JSON") << QByteArray("{") << good
                             << "DIR/a.pdd: unterminated object at byte 1";
    QTest::newRow("no description")
        << good << QByteArray("{}")
        << "DIR/b.pdd: no description: module, object, instance and elements are wanted";
    QTest::newRow("the same source twice")
        << good << good << "DIR/b.pdd: M/O/1 stands in another file already";
    QTest::newRow("nothing") << QByteArray() << QByteArray()
                             << "DIR: no description file (*.pdd) in it";
}

void LeafCheckTest::brokenSnapshotsAreNamed()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QString, error);
    const QTemporaryDir directory;
    if (!first.isEmpty()) {
        QVERIFY(writeFile(directory.filePath("a.pdd"), first));
        QVERIFY(writeFile(directory.filePath("b.pdd"), second));
    }
    Snapshot snapshot;
    QString found;

    QVERIFY(!Snapshot::load(directory.path(), snapshot, found));

    QCOMPARE(found, error.replace("DIR", directory.path()));
}

void LeafCheckTest::fileNamesAreUniqueAndSafe()
{
    QCOMPARE(snapshotFileName({"M", "O", "1"}), QString("M_O_1.pdd"));
    QCOMPARE(snapshotFileName({"M", "O", ""}), QString("M_O_.pdd"));
    QCOMPARE(snapshotFileName({"M", "O", "../a/b c"}), QString("M_O_..%2Fa%2Fb%20c.pdd"));
}

QTEST_GUILESS_MAIN(LeafCheckTest)
#include "LeafCheckTest.moc"
