// SPDX-License-Identifier: MIT
// Descriptions are read and rendered byte by byte as Qt's JSON reader and writer would do it.
#include "JsonScanner.h"
#include "QtJsonOracle.h"
#include "RandomDescription.h"

#include <QDir>
#include <QRandomGenerator>
#include <QtTest>

namespace {

QByteArray leafWith(const QByteArray &members)
{
    return documentOf(R"({"name": "a", "type": "float64", )" + members + "}");
}

} // namespace

class JsonScannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unusualSpellingsAreReadAsQtDoes_data();
    void unusualSpellingsAreReadAsQtDoes();
    void usualTextsNeedNoSecondReader_data();
    void usualTextsNeedNoSecondReader();
    void everyNumberIsRenderedAsQtDoes();
    void randomDescriptionsAreReadAsQtDoes();
    void knownInputsAreReadAsQtDoes();
};

void JsonScannerTest::unusualSpellingsAreReadAsQtDoes_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto leaf = [](const char *name, const QByteArray &members) {
        QTest::newRow(name) << leafWith(members);
    };
    leaf("a key twice", R"("unit": "a", "unit": "b")");
    leaf("a key twice, spelled in two ways", R"("unit": "a", "\u0075nit": "b")");
    leaf("a known key with an escape", R"("\u0075nit": 1)");
    leaf("a key with a needed escape", R"("\"": 1, "\n": 2, "\\": 3)");
    leaf("a key with a needless escape", R"("\/": 1)");
    leaf("a key with a lone surrogate", R"("\ud83d": 1)");
    leaf("keys in the order of UTF-16",
         "\"\xef\xbf\xbd\": 1, \"\xf0\x9f\x98\x80\": 2, \"\xc3\xa4\": 3, \"z\": 4");
    leaf("an empty key", R"("": 1)");
    leaf("a byte-order mark in a text", "\"x\": \"\xef\xbb\xbfy\"");
    leaf("a byte-order mark in a key", "\"\xef\xbb\xbfx\": 1");
    leaf("an unknown escape", R"("x": "\q")");
    leaf("a control character", "\"x\": \"\x01\t\"");
    leaf("a zero byte", QByteArray("\"x\": \"\x00\"", 9));
    leaf("an overlong character", "\"x\": \"\xc0\xaf\"");
    leaf("a surrogate in UTF-8", "\"x\": \"\xed\xa0\x80\"");
    leaf("past Unicode", "\"x\": \"\xf4\x90\x80\x80\"");
    leaf("a cut character", "\"x\": \"\xe2\x82\"");
    for (const char *const number : {"-0",
                                     "-0.0",
                                     "0.0",
                                     "1.0",
                                     "1.50",
                                     "01",
                                     "1.",
                                     ".5",
                                     "-",
                                     "+1",
                                     "1e5",
                                     "1E+2",
                                     "1e-7",
                                     "0.001",
                                     "0.0001",
                                     "0.00012",
                                     "1e999",
                                     "-1e999",
                                     "1e-999",
                                     "123456789012345.5",
                                     "12345678901234.5",
                                     "9007199254740993",
                                     "9223372036854775807",
                                     "9223372036854775808",
                                     "18446744073709551615",
                                     "18446744073709551616",
                                     "0.1234567890123456",
                                     "1e",
                                     "1e+",
                                     "1x"}) {
        leaf(number, QByteArray("\"x\": ") + number);
    }
    leaf("nested", R"("x": [1, {"b": 1.0, "a": [], "a": null}, "\u0041"], "simulate": {})");
    leaf("nested as deep as Qt reads", "\"x\": " + QByteArray(1021, '[') + QByteArray(1021, ']'));
    leaf("nested deeper than Qt reads", "\"x\": " + QByteArray(1022, '[') + QByteArray(1022, ']'));
    leaf("a comma too many", R"("x": 1, )");
    leaf("a wrong word", R"("x": nul)");
    leaf("elements that are no array", R"("elements": {})");
    leaf("a buffer in a leaf", R"("buffer": {"name": 1})");
    QTest::newRow("a byte-order mark") << QByteArray("\xef\xbb\xbf") + leafWith(R"("x": 1)");
    QTest::newRow("something behind") << leafWith(R"("x": 1)") + "x";
    QTest::newRow("a zero behind") << leafWith(R"("x": 1)") + '\0';
    QTest::newRow("elements twice") << documentOf(R"({"name":"a","type":"bool"}], "elements": [)");
    QTest::newRow("entries of all kinds") << documentOf(R"(1, "x", null, [], {})");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("an array") << QByteArray("[{}]");
    QTest::newRow("a word") << QByteArray("true");
}

void JsonScannerTest::unusualSpellingsAreReadAsQtDoes()
{
    QFETCH(QByteArray, text);

    for (int size = text.size(); size >= 0; size -= size > 200 ? 97 : 1) { // also cut anywhere
        QCOMPARE(QtJsonOracle::difference(text.left(size), DescriptionForm::Template), QString());
    }
}

void JsonScannerTest::usualTextsNeedNoSecondReader_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("texts") << leafWith("\"unit\": \"\xc2\xb0"
                                       "C\", \"description\": \"5\\\" \\u00b0\"");
    QTest::newRow("numbers") << leafWith(R"("a": -0.5, "b": 1e300, "c": 9007199254740993)");
    QTest::newRow("nested") << leafWith(R"("simulate": {"waveform": "sine", "list": [1, {}]})");
    QTest::newRow("no leaves") << documentOf("");
    QTest::newRow("nothing") << QByteArray("{}");
}

void JsonScannerTest::usualTextsNeedNoSecondReader()
{
    QFETCH(QByteArray, text);

    QVERIFY(JsonScanner::scan(text));
    QCOMPARE(QtJsonOracle::difference(text, DescriptionForm::Template), QString());
}

void JsonScannerTest::everyNumberIsRenderedAsQtDoes()
{
    QRandomGenerator random(20);
    QByteArray members;
    for (int round = 0; round < 20000; ++round) {
        const int digits = 1 + int(random.bounded(17));
        QByteArray number = QByteArray::number(random.generate64()).left(digits);
        number.insert(int(random.bounded(quint32(number.size()))) + 1, '.');
        number += random.bounded(2) == 0 ? "5" : "0";
        members += (members.isEmpty() ? "\"" : ",\"") + QByteArray::number(round)
            + (random.bounded(2) == 0 ? "\":" : "\":-") + number;
        members += ",\"z" + QByteArray::number(round) + "\":0." + QByteArray(round % 6, '0') + "25";
    }

    QCOMPARE(QtJsonOracle::difference(leafWith(members), DescriptionForm::Template), QString());
}

void JsonScannerTest::randomDescriptionsAreReadAsQtDoes()
{
    int accepted = 0;
    for (quint32 seed = 0; seed < 4000; ++seed) {
        RandomDescription random(seed);
        const QByteArray text = random.document();
        const QString found = QtJsonOracle::difference(text, DescriptionForm::Template)
            + QtJsonOracle::difference(random.mutated(text), DescriptionForm::Template);
        QVERIFY2(found.isEmpty(), qPrintable(QString("seed %1: %2").arg(seed).arg(found)));
        QString error;
        accepted += parseDescription(text, DescriptionForm::Template, error) ? 1 : 0;
    }
    QVERIFY2(accepted > 400, qPrintable(QString::number(accepted)));
}

void JsonScannerTest::knownInputsAreReadAsQtDoes()
{
    const QDir corpus(DESCRIPTION_CORPUS);
    const QStringList names = corpus.entryList(QDir::Files);
    QVERIFY(names.contains("published"));
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        for (const DescriptionForm form : {DescriptionForm::Published, DescriptionForm::Template}) {
            const QString found = QtJsonOracle::difference(text, form);
            QVERIFY2(found.isEmpty(), qPrintable(name + ": " + found));
        }
    }
}

QTEST_APPLESS_MAIN(JsonScannerTest)
#include "JsonScannerTest.moc"
