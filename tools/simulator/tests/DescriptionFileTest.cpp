// SPDX-License-Identifier: MIT
// What the simulator reads from description files, and how it tells what changed.
#include "DescriptionFile.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

QJsonObject object(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

const char *const pump = R"({"module": "Pump", "object": "Controller", "instance": "", "elements": [
    {"name": "drive", "elements": [{"name": "speed", "type": "float64", "unit": "1/min",
        "simulate": {"kind": "sine", "period": 1}}]},
    {"name": "level", "type": "int8"}]})";

} // namespace

class DescriptionFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesAndMotionsAreFound();
    void simulationKeysAreNotPublished();
    void whatIsWrongIsNamed_data();
    void whatIsWrongIsNamed();
    void aKeyThatLooksLikeAKnownOneIsDoubted_data();
    void aKeyThatLooksLikeAKnownOneIsDoubted();
    void aMissingFileIsNamed();
    void onlyPropertiesMayDifferInTheSameLayout_data();
    void onlyPropertiesMayDifferInTheSameLayout();
    void theExamplesAreRight_data();
    void theExamplesAreRight();
};

void DescriptionFileTest::leavesAndMotionsAreFound()
{
    DescriptionFile file;
    QString error;

    QVERIFY2(parseDescriptionFile("pump.pdd", pump, file, error), qPrintable(error));

    QCOMPARE(file.source.module, QString("Pump"));
    QCOMPARE(file.source.object, QString("Controller"));
    QCOMPARE(file.source.instance, QString(""));
    QCOMPARE(file.movingLeaves.size(), std::size_t(1));
    QCOMPARE(file.movingLeaves.front().leaf.path, QString("drive/speed"));
}

void DescriptionFileTest::simulationKeysAreNotPublished()
{
    const QJsonObject published = withoutSimulation(object(pump));

    QVERIFY(!QJsonDocument(published).toJson().contains("simulate"));
    QCOMPARE(leafTemplates(published).size(), 2);
    QCOMPARE(leafTemplates(published).first().properties.value("unit").toString(),
             QString("1/min"));
}

void DescriptionFileTest::whatIsWrongIsNamed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");

    QTest::newRow("broken JSON names the place")
        << QByteArray("{\n  \"module\": x}") << "f.pdd: line 2, column 13: illegal number";
    QTest::newRow("no module") << QByteArray("{}")
                               << "f.pdd: the key \"module\" must be there and hold a text";
    QTest::newRow("a misspelt module")
        << QByteArray(R"({"Module": "M"})")
        << "f.pdd: the key \"module\" must be there and hold a text; "
           "\"Module\" looks like it";
    QTest::newRow("an instance that is a number")
        << QByteArray(R"({"module": "M", "object": "O", "instance": 1})")
        << "f.pdd: the key \"instance\" must be there and hold a text";
    QTest::newRow("a bad motion names the leaf")
        << QByteArray(pump).replace("\"period\": 1", "\"period\": 0")
        << "f.pdd: leaf \"drive/speed\": simulate.period must be above 0";
}

void DescriptionFileTest::whatIsWrongIsNamed()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    DescriptionFile file;
    QString error;

    QVERIFY(!parseDescriptionFile("f.pdd", content, file, error));

    QCOMPARE(error, expected);
}

void DescriptionFileTest::aKeyThatLooksLikeAKnownOneIsDoubted_data()
{
    QTest::addColumn<QByteArray>("keys"); // of the leaf "speed"
    QTest::addColumn<QStringList>("expected");

    const auto doubt = [](const char *text) { return QStringList{text}; };
    QTest::newRow("all known") << QByteArray(R"("readOnly": true)") << QStringList();
    QTest::newRow("another case") << QByteArray(R"("readonly": true)")
                                  << doubt(
                                         "leaf \"drive/speed\": unknown key \"readonly\"; did you "
                                         "mean \"readOnly\"?");
    QTest::newRow("a capital") << QByteArray(R"("Type": 1)") << QStringList();
    QTest::newRow("one letter")
        << QByteArray(R"("minimom": 1)")
        << doubt("leaf \"drive/speed\": unknown key \"minimom\"; did you mean "
                 "\"minimum\"?");
    QTest::newRow("a key of somebody else's") << QByteArray(R"("colour": "red")") << QStringList();
    QTest::newRow("two keys")
        << QByteArray(R"("maximumm": 1, "SelectorType": "x")")
        << QStringList{"leaf \"drive/speed\": unknown key \"SelectorType\"; did you mean "
                       "\"selectorType\"?",
                       "leaf \"drive/speed\": unknown key \"maximumm\"; did you mean "
                       "\"maximum\"?"};
    QTest::newRow("the same key of several leaves")
        << QByteArray(R"("minimom": 1}, {"name": "other", "type": "int8", "minimom": 2)")
        << doubt(
               "leaf \"drive/speed\" and 1 more: unknown key \"minimom\"; did you mean \"minimum\"?");
    QTest::newRow("of a group and of the whole")
        << QByteArray(R"("unit": "m"}], "Description": "x", "more": [{)")
        << doubt("group \"drive\": unknown key \"Description\"; did you mean \"description\"?");
}

void DescriptionFileTest::aKeyThatLooksLikeAKnownOneIsDoubted()
{
    QFETCH(QByteArray, keys);
    QFETCH(QStringList, expected);
    const QByteArray text = R"({"module": "M", "object": "O", "instance": "", "elements": [
        {"name": "drive", "elements": [{"name": "speed", "type": "int8", )"
        + keys + "}]}]}";
    DescriptionFile file;
    QString error;

    QVERIFY2(parseDescriptionFile("f.pdd", text, file, error), qPrintable(error));

    QCOMPARE(file.doubts, expected);
    QCOMPARE(file.description, object(text)); // all keys are kept
}

void DescriptionFileTest::aMissingFileIsNamed()
{
    QByteArray content;
    QString error;

    QVERIFY(!readFile("/nonexistent/f.pdd", content, error));

    QCOMPARE(error, QString("/nonexistent/f.pdd: No such file or directory"));
}

void DescriptionFileTest::onlyPropertiesMayDifferInTheSameLayout_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<bool>("same");

    QTest::newRow("another unit") << QByteArray("1/min") << QByteArray("1/s") << true;
    QTest::newRow("another type") << QByteArray("int8") << QByteArray("int16") << false;
    QTest::newRow("another name") << QByteArray("level") << QByteArray("height") << false;
    QTest::newRow("read-only now")
        << QByteArray("\"int8\"") << QByteArray("\"int8\", \"readOnly\": true") << false;
    QTest::newRow("explicitly writable")
        << QByteArray("\"int8\"") << QByteArray("\"int8\", \"readOnly\": false") << true;
    QTest::newRow("one more") << QByteArray("\"int8\"}")
                              << QByteArray(R"("int8"}, {"name": "x", "type": "bool"})") << false;
}

void DescriptionFileTest::onlyPropertiesMayDifferInTheSameLayout()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(bool, same);
    const QByteArray changed = QByteArray(pump).replace(from, to);
    QVERIFY(changed != pump);

    QCOMPARE(sameLayout(object(pump), object(changed.constData())), same);
}

void DescriptionFileTest::theExamplesAreRight_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("fewest");
    QTest::addColumn<int>("most");

    QTest::newRow("pump station") << "pump-station.pdd" << 9 << 14;
    QTest::newRow("tank farm") << "tank-farm.pdd" << 50 << 70;
    QTest::newRow("heating plant") << "heating-plant.pdd" << 450 << 550;
}

void DescriptionFileTest::theExamplesAreRight()
{
    QFETCH(QString, file);
    QFETCH(int, fewest);
    QFETCH(int, most);
    const QString fileName = QStringLiteral(EXAMPLE_DATA "/") + file;
    QByteArray content;
    DescriptionFile parsed;
    QString error;

    QVERIFY2(readFile(fileName, content, error), qPrintable(error));
    QVERIFY2(parseDescriptionFile(fileName, content, parsed, error), qPrintable(error));

    const QVector<LeafTemplate> leaves = leafTemplates(parsed.description);
    QVERIFY2(leaves.size() >= fewest && leaves.size() <= most,
             qPrintable(QString::number(leaves.size())));
    QCOMPARE(int(parsed.movingLeaves.size()), leaves.size()); // every leaf shows a value
    QCOMPARE(parsed.doubts, QStringList());
}

QTEST_APPLESS_MAIN(DescriptionFileTest)
#include "DescriptionFileTest.moc"
