// SPDX-License-Identifier: MIT
// How leaves move, and which parameters are refused.
#include "Motion.h"

#include <QJsonDocument>
#include <QtTest>

#include <cmath>

namespace {

// All leaves of the test's instance, so that one can follow another.
QVector<LeafTemplate> leavesOf(const QString &leaf)
{
    const QString text = QStringLiteral(R"({"elements": [%1,
        {"name": "setpoint", "type": "float64"}, {"name": "text", "type": "string", "capacity": 32},
        {"name": "enable", "type": "bool"}]})")
                             .arg(leaf);
    return leafTemplates(QJsonDocument::fromJson(text.toUtf8()).object());
}

std::unique_ptr<Motion> motionOf(const QString &leaf, QString &error)
{
    const QVector<LeafTemplate> leaves = leavesOf(leaf);
    return createMotion(leaves.first(), leaves, error);
}

} // namespace

class MotionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void motionsFollowTheirShape_data();
    void motionsFollowTheirShape();
    void aRandomWalkStaysInItsRangeAndRepeats();
    void aFollowerApproachesWithItsTimeConstant();
    void aFollowerRestsOnceItIsThere();
    void aFollowerOfAStringCopiesAndCuts();
    void aFollowerWaitsForAValue();
    void badParametersAreRefusedByName_data();
    void badParametersAreRefusedByName();
};

void MotionTest::motionsFollowTheirShape_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("simulate");
    QTest::addColumn<QVariantList>("expected"); // at 0, 250, 500, 750, 1000 ms

    const QString sine = R"({"kind": "sine", "offset": 10, "amplitude": 2, "period": 1})";
    QTest::newRow("a sine") << "float64" << sine << QVariantList{10., 12., 10., 8., 10.};
    QTest::newRow("a sine of integers") << "int8" << sine << QVariantList{10, 12, 10, 8, 10};
    QTest::newRow("a sine with a phase")
        << "float64"
        << R"({"kind": "sine", "period": 1, "phase": 0.25})" << QVariantList{1., 0., -1., 0., 1.};
    QTest::newRow("a ramp") << "float64"
                            << R"({"kind": "ramp", "offset": 4, "amplitude": 8, "period": 1})"
                            << QVariantList{4., 6., 8., 10., 4.};
    QTest::newRow("a square") << "uint8"
                              << R"({"kind": "square", "offset": 5, "amplitude": 5, "period": 1})"
                              << QVariantList{10U, 10U, 0U, 0U, 10U};
    QTest::newRow("a square of a bool")
        << "bool"
        << R"({"kind": "square", "period": 1})" << QVariantList{true, true, false, false, true};
    QTest::newRow("a constant") << "string"
                                << R"({"kind": "constant", "value": "on"})"
                                << QVariantList{"on", "on", "on", "on", "on"};
    QTest::newRow("a counter wraps at the maximum")
        << "uint8"
        << R"({"kind": "counter", "offset": 248, "step": 4, "interval": 250})"
        << QVariantList{248U, 252U, 248U, 252U, 248U};
    QTest::newRow("a counter counts down")
        << "uint8"
        << R"({"kind": "counter", "offset": 2, "step": -1, "interval": 250})"
        << QVariantList{2U, 1U, 0U, 2U, 1U};
    QTest::newRow("a sequence") << "string"
                                << R"({"kind": "sequence", "values": ["a", "b"], "interval": 500})"
                                << QVariantList{"a", "a", "b", "b", "a"};
}

void MotionTest::motionsFollowTheirShape()
{
    QFETCH(QString, type);
    QFETCH(QString, simulate);
    QFETCH(QVariantList, expected);
    QString error;
    const auto motion = motionOf(
        QStringLiteral(R"({"name": "leaf", "type": "%1", "capacity": 8, "simulate": %2})")
            .arg(type, simulate),
        error);
    QVERIFY2(motion, qPrintable(error));

    for (int i = 0; i < expected.size(); ++i) {
        const QVariant value = motion->next(qint64(i) * 250, {});
        QCOMPARE(value.userType(), expected.at(i).userType());
        QVERIFY2(value == expected.at(i)
                     || std::abs(value.toDouble() - expected.at(i).toDouble()) < 1e-9,
                 qPrintable(QStringLiteral("%1: %2").arg(i).arg(value.toString())));
    }
}

void MotionTest::aRandomWalkStaysInItsRangeAndRepeats()
{
    const QString leaf
        = R"({"name": "leaf", "type": "float64", "minimum": 0, "maximum": 3, "simulate":
        {"kind": "randomWalk", "offset": 1, "step": 1, "interval": 10, "seed": 7}})";
    QString error;
    const auto first = motionOf(leaf, error);
    const auto second = motionOf(leaf, error);
    QVERIFY2(first && second, qPrintable(error));

    double lowest = 1;
    double highest = 1;
    for (int i = 0; i < 1000; ++i) {
        const double value = first->next(qint64(i) * 10, {}).toDouble();
        QCOMPARE(second->next(qint64(i) * 10, {}).toDouble(), value);
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    QVERIFY(lowest >= 0 && lowest < 0.5);
    QVERIFY(highest <= 3 && highest > 2.5);
}

void MotionTest::aFollowerApproachesWithItsTimeConstant()
{
    QString error;
    const auto motion = motionOf(R"({"name": "leaf", "type": "float64", "simulate":
        {"kind": "follow", "of": "setpoint", "timeConstant": 2, "gain": 10, "offset": 1}})",
                                 error);
    QVERIFY2(motion, qPrintable(error));
    double setpoint = 0;
    const auto read
        = [&](const QString &path) { return path == "setpoint" ? QVariant(setpoint) : QVariant(); };

    QCOMPARE(motion->next(0, read).toDouble(), 1.0); // begins where it would end
    setpoint = 10;
    QCOMPARE(motion->next(2000, read).toDouble(), 1 + 100 * (1 - std::exp(-1.0)));
    QCOMPARE(motion->next(4000, read).toDouble(), 1 + 100 * (1 - std::exp(-2.0)));
}

void MotionTest::aFollowerRestsOnceItIsThere()
{
    QString error;
    const auto motion = motionOf(R"({"name": "leaf", "type": "bool", "simulate":
        {"kind": "follow", "of": "enable", "timeConstant": 1}})",
                                 error);
    QVERIFY2(motion, qPrintable(error));
    bool enable = false;
    const auto read = [&](const QString &) { return QVariant(enable); };

    QCOMPARE(motion->next(0, read), QVariant(false));
    enable = true;
    QCOMPARE(motion->next(500, read), QVariant(false));
    QCOMPARE(motion->next(800, read), QVariant(true)); // past ln 2 time constants

    QString floatError;
    const auto exact = motionOf(R"({"name": "leaf", "type": "float64", "simulate":
        {"kind": "follow", "of": "setpoint", "timeConstant": 1}})",
                                floatError);
    double setpoint = 0;
    const auto readSetpoint = [&](const QString &) { return QVariant(setpoint); };
    exact->next(0, readSetpoint);
    setpoint = 5;
    QCOMPARE(exact->next(10000, readSetpoint), QVariant(5.0));
}

void MotionTest::aFollowerOfAStringCopiesAndCuts()
{
    QString error;
    const auto motion = motionOf(R"({"name": "leaf", "type": "string", "capacity": 5, "simulate":
        {"kind": "follow", "of": "text"}})",
                                 error);
    QVERIFY2(motion, qPrintable(error));

    QCOMPARE(motion->next(0, [](const QString &) { return QVariant(QString("aäöü")); }),
             QVariant(QString("aäö")));
}

void MotionTest::aFollowerWaitsForAValue()
{
    QString error;
    const auto motion = motionOf(
        R"({"name": "leaf", "type": "int8", "simulate": {"kind": "follow", "of": "setpoint"}})",
        error);
    QVERIFY2(motion, qPrintable(error));

    QVERIFY(!motion->next(0, [](const QString &) { return QVariant(); }).isValid());
    QVERIFY(!motion->next(0, [](const QString &) { return QVariant(std::nan("")); }).isValid());
    QCOMPARE(motion->next(0, [](const QString &) { return QVariant(1e9); }), QVariant(127));
}

void MotionTest::badParametersAreRefusedByName_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("simulate");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no kind") << "int8"
                             << "{}"
                             << "simulate.kind is missing";
    QTest::newRow("not an object") << "int8"
                                   << "5"
                                   << "simulate.kind is missing";
    QTest::newRow("an unknown kind")
        << "int8"
        << R"({"kind": "jump"})"
        << "simulate.kind \"jump\" is none of constant, counter, follow, "
           "ramp, randomWalk, sequence, sine, square";
    QTest::newRow("an unknown key")
        << "int8"
        << R"({"kind": "counter", "stepp": 1})"
        << "simulate.stepp is unknown for kind \"counter\"; did you mean \"step\"?";
    QTest::newRow("a key that is like none") << "int8"
                                             << R"({"kind": "counter", "colour": 1})"
                                             << "simulate.colour is unknown for kind \"counter\"";
    QTest::newRow("a missing period") << "float64"
                                      << R"({"kind": "sine"})"
                                      << "simulate.period is missing";
    QTest::newRow("a period of zero") << "float64"
                                      << R"({"kind": "sine", "period": 0})"
                                      << "simulate.period must be above 0";
    QTest::newRow("a period as text") << "float64"
                                      << R"({"kind": "sine", "period": "1"})"
                                      << "simulate.period must be a number";
    QTest::newRow("a swing beyond the limits")
        << "uint8"
        << R"({"kind": "sine", "period": 1, "amplitude": 2})"
        << "simulate.amplitude makes the value move from -2 to 2, but the leaf allows 0 to 255";
    QTest::newRow("a wave on a string")
        << "string"
        << R"({"kind": "sine", "period": 1})"
        << "simulate.kind \"sine\" does not suit a leaf of type string";
    QTest::newRow("a ramp on a bool") << "bool"
                                      << R"({"kind": "ramp", "period": 1})"
                                      << "simulate.kind \"ramp\" does not suit a leaf of type bool";
    QTest::newRow("a constant without value") << "int8"
                                              << R"({"kind": "constant"})"
                                              << "simulate.value is missing";
    QTest::newRow("a constant of the wrong type")
        << "int8"
        << R"({"kind": "constant", "value": "x"})"
        << "simulate.value is of the wrong JSON type for int8";
    QTest::newRow("a constant that is too long")
        << "string"
        << R"({"kind": "constant", "value": "123456789"})"
        << "simulate.value has 9 bytes, more than the capacity 8";
    QTest::newRow("a sequence with one bad value")
        << "int8"
        << R"({"kind": "sequence", "values": [1, 300]})"
        << "simulate.values[1] does not fit: int8 holds -128 to 127";
    QTest::newRow("an empty sequence")
        << "int8"
        << R"({"kind": "sequence", "values": []})"
        << "simulate.values must be an array with at least one value";
    QTest::newRow("a counter that stands") << "int8"
                                           << R"({"kind": "counter", "step": 0})"
                                           << "simulate.step must not be 0";
    QTest::newRow("a walk without step") << "int8"
                                         << R"({"kind": "randomWalk"})"
                                         << "simulate.step is missing";
    QTest::newRow("a negative seed") << "int8"
                                     << R"({"kind": "randomWalk", "step": 1, "seed": -1})"
                                     << "simulate.seed must lie between 0 and 4294967295";
    QTest::newRow("a walk that starts outside")
        << "uint8"
        << R"({"kind": "randomWalk", "step": 1, "offset": -1})"
        << "simulate.offset makes the value move from -1 to -1, but the leaf allows 0 to 255";
    QTest::newRow("a follower of nothing") << "int8"
                                           << R"({"kind": "follow"})"
                                           << "simulate.of is missing";
    QTest::newRow("a follower of itself") << "int8"
                                          << R"({"kind": "follow", "of": "leaf"})"
                                          << "simulate.of names no other leaf: \"leaf\"";
    QTest::newRow("a number that follows a text")
        << "int8"
        << R"({"kind": "follow", "of": "text"})"
        << "simulate.of names a leaf of another kind: int8 cannot follow string";
    QTest::newRow("a negative time constant")
        << "int8"
        << R"({"kind": "follow", "of": "setpoint", "timeConstant": -1})"
        << "simulate.timeConstant must not be negative";
}

void MotionTest::badParametersAreRefusedByName()
{
    QFETCH(QString, type);
    QFETCH(QString, simulate);
    QFETCH(QString, expected);
    QString error;

    const auto motion = motionOf(
        QStringLiteral(R"({"name": "leaf", "type": "%1", "capacity": 8, "simulate": %2})")
            .arg(type, simulate),
        error);

    QVERIFY(!motion);
    QCOMPARE(error, expected);
}

QTEST_APPLESS_MAIN(MotionTest)
#include "MotionTest.moc"
