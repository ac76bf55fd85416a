// SPDX-License-Identifier: MIT
// Which changes are worth a line.
#include "Deadband.h"

#include <QtTest>

#include <limits>

namespace {

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

bool tells(const QVariant &before, const QVariant &after, double deadband)
{
    return Deadband::isExceeded(before, after, deadband);
}

QJsonObject leafOf(const QString &type, const QJsonValue &minimum, const QJsonValue &maximum)
{
    QJsonObject leaf{{"type", type}};
    if (!minimum.isNull()) {
        leaf.insert("minimum", minimum);
    }
    if (!maximum.isNull()) {
        leaf.insert("maximum", maximum);
    }
    return leaf;
}

} // namespace

class DeadbandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutADeadbandEveryChangeIsTold_data();
    void withoutADeadbandEveryChangeIsTold();
    void aChangeOfTheDeadbandItselfIsNotTold();
    void integersBeyondTheDoublesAreComparedExactly();
    void notANumberIsToldOnce();
    void textsAreUnderstoodOrRefused_data();
    void textsAreUnderstoodOrRefused();
    void aShareIsOneOfTheRange_data();
    void aShareIsOneOfTheRange();
};

void DeadbandTest::withoutADeadbandEveryChangeIsTold_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");
    QTest::newRow("bool") << QVariant(false) << QVariant(true);
    QTest::newRow("the sign of zero") << QVariant(0.0) << QVariant(-0.0);
    QTest::newRow("the least step") << QVariant(0.1) << QVariant(0.1 + 1.4e-17);
    QTest::newRow("text") << QVariant("a") << QVariant("b");
    QTest::newRow("bytes") << QVariant(QByteArray("a")) << QVariant(QByteArray("b"));
    QTest::newRow("another type") << QVariant(1) << QVariant(1U);
    QTest::newRow("no value any more") << QVariant(1) << QVariant();
}

void DeadbandTest::withoutADeadbandEveryChangeIsTold()
{
    QFETCH(const QVariant, before);
    QFETCH(const QVariant, after);
    QVERIFY(tells(before, after, 0));
    QVERIFY(!tells(before, before, 0));
}

void DeadbandTest::aChangeOfTheDeadbandItselfIsNotTold()
{
    QVERIFY(!tells(10.0, 10.5, 0.5));
    QVERIFY(!tells(10.0, 9.5, 0.5));
    QVERIFY(tells(10.0, 10.75, 0.5));
    QVERIFY(!tells(10, 12, 2));
    QVERIFY(tells(10, 13, 2));
    QVERIFY(!tells(0.0, -0.0, 0.5));
    QVERIFY(tells(false, true, 5));
    QVERIFY(tells("a", "b", 5));
}

void DeadbandTest::integersBeyondTheDoublesAreComparedExactly()
{
    const qint64 large = std::numeric_limits<qint64>::max();
    const quint64 largest = std::numeric_limits<quint64>::max();
    QVERIFY(tells(large, large - 1, 0));
    QVERIFY(tells(large, std::numeric_limits<qint64>::min(), 1e18));
    QVERIFY(tells(largest, largest - 1, 0));
    QVERIFY(!tells(largest, largest - 1, 1));
}

void DeadbandTest::notANumberIsToldOnce()
{
    QVERIFY(tells(1.0, notANumber, 1));
    QVERIFY(!tells(notANumber, notANumber, 1));
    QVERIFY(!tells(notANumber, notANumber, 0));
    QVERIFY(tells(notANumber, infinity, 1));
    QVERIFY(!tells(infinity, infinity, 1));
    QVERIFY(tells(infinity, -infinity, 1));
    QVERIFY(tells(-infinity, 0.0, 1));
}

void DeadbandTest::textsAreUnderstoodOrRefused_data()
{
    QTest::addColumn<bool>("good");
    for (const char *text : {"0", "0.5", "1e3", "0.5%", "100%", "0%"}) {
        QTest::newRow(text) << true;
    }
    for (const char *text : {"", "%", "x", "-1", "-1%", "100.5%", "nan", "inf", "0.5 V", "5%%"}) {
        QTest::newRow(text) << false;
    }
}

void DeadbandTest::textsAreUnderstoodOrRefused()
{
    QFETCH(const bool, good);
    QCOMPARE(Deadband::fromText(QTest::currentDataTag()).has_value(), good);
}

void DeadbandTest::aShareIsOneOfTheRange_data()
{
    QTest::addColumn<QJsonObject>("leaf");
    QTest::addColumn<double>("deadband"); // -1: none
    QTest::newRow("a range") << leafOf("float64", -50, 150) << 1.0;
    QTest::newRow("an empty one") << leafOf("float64", 5, 5) << 0.0;
    QTest::newRow("a reversed one") << leafOf("int32", 5, 4) << 0.0;
    QTest::newRow("limits as digits")
        << leafOf("uint64", "0", "18446744073709551600") << 9.22337203685477580e16;
    QTest::newRow("no minimum") << leafOf("float32", QJsonValue(), 5) << -1.0;
    QTest::newRow("no maximum") << leafOf("uint8", 5, QJsonValue()) << -1.0;
    QTest::newRow("a bool") << leafOf("bool", QJsonValue(), QJsonValue()) << 0.5;
    QTest::newRow("a text") << leafOf("string", QJsonValue(), QJsonValue()) << 0.5;
}

void DeadbandTest::aShareIsOneOfTheRange()
{
    QFETCH(const QJsonObject, leaf);
    QFETCH(const double, deadband);
    QCOMPARE(Deadband::fromText("0.5%")->of(leaf).value_or(-1), deadband);
    QCOMPARE(Deadband::fromText("0.5")->of(leaf).value_or(-1), 0.5);
}

QTEST_APPLESS_MAIN(DeadbandTest)
#include "DeadbandTest.moc"
