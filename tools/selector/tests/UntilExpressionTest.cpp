// SPDX-License-Identifier: MIT
// Conditions that end a watch: what they mean and how they are refused.
#include "UntilExpression.h"

#include <QtTest>

namespace {

const QVector<WatchTarget> targets = watchTargets(
    {listLine(0, "processdata://M/O/1/drive/speed"), listLine(0, "on=M/O/1/drive/running"),
     listLine(0, "processdata://M/O/1/name"), listLine(0, "M/O/1/pressure"),
     listLine(0, "processdata://M/O/1/lost"), listLine(0, "M/O/2/name?deactivated"),
     listLine(0, "big=processdata://M/O/1/big")});

QVector<WatchedValue> values()
{
    return {{1450.5, false, 5.5},
            {true, false, -0.5},
            {QString("north"), true},
            {QVariant::fromValue(1.8F), false},
            {QVariant(), false, 7200.0},
            {QVariant(), false},
            {QVariant::fromValue<quint64>(18446744073709551615ULL), false}};
}

} // namespace

class UntilExpressionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conditionsAreEvaluated_data();
    void conditionsAreEvaluated();
    void wrongConditionsNameTheirPlace_data();
    void wrongConditionsNameTheirPlace();
    void changedWithoutASelectorMeansAny();
};

void UntilExpressionTest::conditionsAreEvaluated_data()
{
    QTest::addColumn<int>("expected");
    const auto row = [](const char *text, UntilExpression::Truth expected) {
        QTest::newRow(text) << int(expected);
    };
    const auto yes = UntilExpression::True;
    const auto no = UntilExpression::False;
    const auto unknown = UntilExpression::Unknown;
    row("speed>1000", yes);
    row("speed>1450.5", no);
    row("speed>=1450.5", yes);
    row("speed<1450.5", no);
    row("speed<=1450.5", yes);
    row("speed == 1.4505e3", yes);
    row("speed!=1450.5", no);
    row("1000<speed", yes);
    row("#0>1000", yes);
    row("speed>-5", yes);
    row("on==true", yes);
    row("on!=true", no);
    row("on==1", yes);
    row("on", yes);
    row("!on", no);
    row("speed>on", yes);
    row("#2=='north'", yes);
    row("#2==\"south\"", no);
    row("#2<'south'", yes);
    row("pressure==1.8", yes);
    row("pressure>1.8", no);
    row("big==18446744073709551615", yes);
    row("big>18446744073709551614", yes);
    row("big>0x7fffffffffffffff", yes);
    row("big>-1", yes);
    row("-1<big", yes);
    row("changed(#2)", yes);
    row("changed(speed)", no);
    row("changed", yes);
    row("!changed(speed)", yes);
    row("lost==1", unknown);
    row("!(lost==1)", unknown);
    row("lost!=1", unknown);
    row("lost", unknown);
    row("lost==1 || on", yes);
    row("lost==1 && on", unknown);
    row("lost==1 && !on", no);
    row("lost==1 || !on", unknown);
    row("#2>5", unknown);
    row("on || on && !on", yes);
    row("(on || on) && !on", no);
    row("  speed > 1000&&on ", yes);
    row("true", yes);
    row("false || 0", no);
    row("age(speed)>5s", yes);
    row("age(speed)>5.5s", no);
    row("age(speed)>=5500ms", yes);
    row("age(speed)<0.1min", yes);
    row("age(speed)<1d", yes);
    row("age(speed)>0.5d", no);
    row("age(speed)>5", yes);
    row("5s<age(speed)", yes);
    row("age(#0) > 6s || age(lost) >= 2h", yes);
    row("age(on)<0", yes);
    row("age(speed)>age(on)", yes);
    row("age(speed)", yes);
    row("age(#2)>1s", unknown);
    row("!(age(#2)>1s)", unknown);
}

void UntilExpressionTest::conditionsAreEvaluated()
{
    QFETCH(int, expected);
    UntilExpression expression;
    QString error;

    QVERIFY2(UntilExpression::parse(QTest::currentDataTag(), targets, expression, error),
             qPrintable(error));

    QCOMPARE(int(expression.evaluate(values())), expected);
}

void UntilExpressionTest::wrongConditionsNameTheirPlace_data()
{
    QTest::addColumn<QString>("error");
    const auto row = [](const char *text, const char *error) {
        QTest::newRow(text) << QString("--until \"%1\", %2").arg(text, error);
    };
    row("", "place 1: a selector or a value is missing");
    row("speed>", "place 7: a selector or a value is missing");
    row("speed = 5", "place 7: \"=\" is not understood; == compares");
    row("speed > 5 %", "place 11: \"%\" is not understood");
    row("speed 5", "place 7: unexpected \"5\"");
    row("speed>1000rpm", "place 7: \"1\" is not understood");
    row("(speed>5", "place 9: \")\" is missing");
    row("speed>5)", "place 8: unexpected \")\"");
    row("spede>5", "place 1: no selector is called \"spede\"; texts stand in quotes");
    row("name=='x'", "place 1: \"name\" may be #2 or #5; say which, or give labels (NAME=URL)");
    row("running", "place 1: no selector is called \"running\"; texts stand in quotes");
    row("#7>5", "place 1: there is no selector #7; the last one is #6");
    row("#99999999999>5", "place 1: there is no selector #99999999999; the last one is #6");
    row("changed(5)", "place 10: changed() takes a selector");
    row("changed(speed", "place 14: \")\" is missing");
    row("on && && on", "place 7: a selector or a value is missing");
    row("speed>5s", "place 9: a time can be compared with an age() only");
    row("5s", "place 3: a time can be compared with an age() only");
    row("age(5)>1s", "place 6: age() takes a selector");
    row("age(age(speed))>1s", "place 15: age() takes a selector");
    row("age(speed>1s", "place 10: \")\" is missing");
    row("age>1s", "place 1: no selector is called \"age\"; texts stand in quotes");
    row("age(speed)>1day", "place 12: \"1\" is not understood");
    row("'open", "place 1: \"'\" is not understood");
}

void UntilExpressionTest::wrongConditionsNameTheirPlace()
{
    QFETCH(QString, error);
    UntilExpression expression;
    QString found;

    QVERIFY(!UntilExpression::parse(QTest::currentDataTag(), targets, expression, found));

    QCOMPARE(found, error);

    const QString deep = QString(100, '(') + "on" + QString(100, ')');
    QVERIFY(!UntilExpression::parse(deep, targets, expression, found));
    QVERIFY(found.endsWith("nested too deeply"));
}

void UntilExpressionTest::changedWithoutASelectorMeansAny()
{
    UntilExpression expression;
    QString error;
    QVERIFY(UntilExpression::parse("changed", targets, expression, error));

    QVector<WatchedValue> still = values();
    still[2].changed = false;

    QCOMPARE(int(expression.evaluate(still)), int(UntilExpression::False));
    QCOMPARE(int(expression.evaluate(values())), int(UntilExpression::True));
}

QTEST_APPLESS_MAIN(UntilExpressionTest)
#include "UntilExpressionTest.moc"
