// SPDX-License-Identifier: MIT
// Names of buffers: readable, unambiguous, never too long.
#include "BufferName.h"

#include <QSet>
#include <QtTest>

class BufferNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNameIsMadeOfModuleObjectAndInstance();
    void bytesThatAreNotPlainAreEscaped_data();
    void bytesThatAreNotPlainAreEscaped();
    void differentSourcesHaveDifferentNames();
    void aNameThatIsTooLongIsShortenedWithAHash();
    void aGenerationIsReadFromAFileOfTheSourceOnly_data();
    void aGenerationIsReadFromAFileOfTheSourceOnly();
    void onlyNamesOfSharedMemoryObjectsHaveAPath_data();
    void onlyNamesOfSharedMemoryObjectsHaveAPath();
};

void BufferNameTest::aNameIsMadeOfModuleObjectAndInstance()
{
    QCOMPARE(bufferNamePrefix({"Pump", "Controller", "1"}),
             QByteArray("processdata.Pump_Controller_1."));
    QCOMPARE(bufferNamePrefix({"Pump", "Controller", ""}),
             QByteArray("processdata.Pump_Controller_."));
}

void BufferNameTest::bytesThatAreNotPlainAreEscaped_data()
{
    QTest::addColumn<QString>("instance");
    QTest::addColumn<QByteArray>("prefix");
    QTest::newRow("a blank") << "a b" << QByteArray("processdata.M_O_a_20b.");
    QTest::newRow("an underscore") << "a_b" << QByteArray("processdata.M_O_a_5fb.");
    QTest::newRow("a dot") << "1.7" << QByteArray("processdata.M_O_1_2e7.");
    QTest::newRow("a slash") << "../x" << QByteArray("processdata.M_O__2e_2e_2fx.");
    QTest::newRow("a letter of two bytes")
        << QString::fromUtf8("ü") << QByteArray("processdata.M_O__c3_bc.");
    QTest::newRow("a minus is plain") << "a-b" << QByteArray("processdata.M_O_a-b.");
    QTest::newRow("digits that read as an escaped blank")
        << "20" << QByteArray("processdata.M_O__320.");
    QTest::newRow("digits that read as an escaped digit")
        << "31" << QByteArray("processdata.M_O_31.");
}

void BufferNameTest::bytesThatAreNotPlainAreEscaped()
{
    QFETCH(QString, instance);
    QFETCH(QByteArray, prefix);
    QCOMPARE(bufferNamePrefix({"M", "O", instance}), prefix);
}

void BufferNameTest::differentSourcesHaveDifferentNames()
{
    const QStringList parts{"",   "A",  "A ",  "20", "20 ", " 20", "_",   "A_", "_20", "2",
                            "0 ", "5f", "5f_", "a",  "b",   "_b",  "a_b", ".",  "~",   "20_"};
    QSet<QByteArray> prefixes;
    for (const QString &module : parts) {
        for (const QString &object : parts) {
            for (const QString &instance : parts) {
                prefixes.insert(bufferNamePrefix({module, object, instance}));
            }
        }
    }
    QCOMPARE(prefixes.size(), parts.size() * parts.size() * parts.size());
}

void BufferNameTest::aNameThatIsTooLongIsShortenedWithAHash()
{
    const QString common(300, 'x');

    const QByteArray one = bufferNamePrefix({"M", "O", common + '1'});
    const QByteArray two = bufferNamePrefix({"M", "O", common + '2'});
    QVERIFY(one != two);
    QCOMPARE(one.size() + QByteArray::number(maximumGeneration).size() + int(qstrlen(lifeNameEnd)),
             255);
    QVERIFY(one.startsWith("processdata.M_O_xxx"));
    QVERIFY(one.contains('~'));

    // The longest name that needs no hash, and one byte more.
    const QByteArray longest = bufferNamePrefix({"M", "O", QString(221 - 4, 'x')});
    QCOMPARE(longest.size() + 16 + int(qstrlen(lifeNameEnd)), 255);
    QVERIFY(!longest.contains('~'));
    QVERIFY(bufferNamePrefix({"M", "O", QString(221 - 3, 'x')}).contains('~'));
}

void BufferNameTest::aGenerationIsReadFromAFileOfTheSourceOnly_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("found");
    QTest::newRow("its file") << QByteArray("processdata.M_O_1.42") << true;
    QTest::newRow("another instance") << QByteArray("processdata.M_O_12.42") << false;
    QTest::newRow("no number") << QByteArray("processdata.M_O_1.") << false;
    QTest::newRow("letters") << QByteArray("processdata.M_O_1.42a") << false;
    QTest::newRow("a leading zero") << QByteArray("processdata.M_O_1.042") << false;
    QTest::newRow("a sign") << QByteArray("processdata.M_O_1.+42") << false;
    QTest::newRow("more than a JSON number holds")
        << QByteArray("processdata.M_O_1.9007199254740992") << false;
}

void BufferNameTest::aGenerationIsReadFromAFileOfTheSourceOnly()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, found);
    const auto generation = generationOfFile(file, "processdata.M_O_1.");
    QCOMPARE(generation.has_value(), found);
    if (found) {
        QCOMPARE(*generation, quint64(42));
    }
}

void BufferNameTest::onlyNamesOfSharedMemoryObjectsHaveAPath_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("a name") << "/processdata.x" << QByteArray("/dev/shm/processdata.x");
    QTest::newRow("the longest name")
        << "/" + QString(255, 'x') << "/dev/shm/" + QByteArray(255, 'x');
    QTest::newRow("one byte more") << "/" + QString(256, 'x') << QByteArray();
    QTest::newRow("no slash") << "processdata.x" << QByteArray();
    QTest::newRow("two slashes") << "/a/b" << QByteArray();
    QTest::newRow("nothing") << "" << QByteArray();
    QTest::newRow("only a slash") << "/" << QByteArray();
    QTest::newRow("the directory") << "/." << QByteArray();
    QTest::newRow("the parent") << "/.." << QByteArray();
    QTest::newRow("a zero byte") << QString("/a") + QChar(0) + "b" << QByteArray();
}

void BufferNameTest::onlyNamesOfSharedMemoryObjectsHaveAPath()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, path);
    QCOMPARE(sharedMemoryPath(name), path);
}

QTEST_APPLESS_MAIN(BufferNameTest)
#include "BufferNameTest.moc"
