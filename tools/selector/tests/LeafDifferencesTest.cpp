// SPDX-License-Identifier: MIT
// Which differences between two descriptions of a leaf break its clients.
#include "LeafDifferences.h"

#include <QtTest>

class LeafDifferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void differencesAreTold_data();
    void differencesAreTold();
};

void LeafDifferencesTest::differencesAreTold_data()
{
    QTest::addColumn<QJsonObject>("before");
    QTest::addColumn<QJsonObject>("after");
    QTest::addColumn<QStringList>("expected");
    const auto row
        = [](const char *name, const QJsonObject &before, const QJsonObject &after,
             const QStringList &expected) { QTest::newRow(name) << before << after << expected; };
    const QJsonObject plain{{"type", "int32"}};
    const auto with = [](const QString &key, const QJsonValue &value) {
        return QJsonObject{{"type", "int32"}, {key, value}};
    };
    row("the same", plain, plain, {});
    row("neither", {}, {}, {});
    row("gone", plain, {}, {"breaks leaf: int32 -> nothing"});
    row("new", {}, plain, {"differs leaf: nothing -> int32"});
    row("retyped", plain, {{"type", "float64"}}, {"breaks type: int32 -> float64"});
    row("another unit", with("unit", "V"), with("unit", "mV"), {"breaks unit: V -> mV"});
    row("a unit comes", plain, with("unit", "mV"), {"breaks unit: nothing -> mV"});
    row("read-only now", plain, with("readOnly", true), {"breaks readOnly: nothing -> true"});
    row("writable now", with("readOnly", true), with("readOnly", false),
        {"differs readOnly: true -> false"});
    row("not read-only, said or not", plain, with("readOnly", false), {});
    row("higher minimum", with("minimum", 0), with("minimum", 1), {"breaks minimum: 0 -> 1"});
    row("lower minimum", with("minimum", 0), with("minimum", -1), {"differs minimum: 0 -> -1"});
    row("lower maximum", with("maximum", 9), with("maximum", 8.5), {"breaks maximum: 9 -> 8.5"});
    row("higher maximum", with("maximum", 9), with("maximum", 10), {"differs maximum: 9 -> 10"});
    const QString high("18446744073709551614"); // as it is read: JSON would round the number
    row("lower maximum past a double's digits", with("maximum", high),
        with("maximum", "18446744073709551613"),
        {"breaks maximum: 18446744073709551614 -> 18446744073709551613"});
    row("higher maximum past a double's digits", with("maximum", "18446744073709551613"),
        with("maximum", high), {"differs maximum: 18446744073709551613 -> 18446744073709551614"});
    row("higher negative minimum past a double's digits", with("minimum", "-9223372036854775807"),
        with("minimum", "-9223372036854775806"),
        {"breaks minimum: -9223372036854775807 -> -9223372036854775806"});
    row("a maximum that got long", with("maximum", 10), with("maximum", high),
        {"differs maximum: 10 -> 18446744073709551614"});
    row("a real minimum against a long one", with("minimum", high), with("minimum", -0.5),
        {"differs minimum: 18446744073709551614 -> -0.5"});
    row("a maximum comes", plain, with("maximum", 10), {"breaks maximum: nothing -> 10"});
    row("a maximum goes", with("maximum", 10), plain, {"differs maximum: 10 -> nothing"});
    row("smaller capacity", with("capacity", 8), with("capacity", 7), {"breaks capacity: 8 -> 7"});
    row("larger capacity", with("capacity", 8), with("capacity", 9), {"differs capacity: 8 -> 9"});
    row("other properties", with("hint", QJsonArray{1}), with("hint", QJsonObject{{"a", 1}}),
        {"differs hint: [1] -> {\"a\":1}"});
    row("several, in order", {{"type", "bool"}, {"unit", "V"}, {"note", "x"}}, plain,
        {"differs note: x -> nothing", "breaks type: bool -> int32", "breaks unit: V -> nothing"});
}

void LeafDifferencesTest::differencesAreTold()
{
    QFETCH(QJsonObject, before);
    QFETCH(QJsonObject, after);
    QFETCH(QStringList, expected);

    QStringList found;
    for (const LeafDifference &one : leafDifferences(before, after)) {
        found.append(QString("%1 %2: %3 -> %4")
                         .arg(one.breaks ? "breaks" : "differs", one.what, one.before, one.after));
    }

    QCOMPARE(found, expected);
}

QTEST_APPLESS_MAIN(LeafDifferencesTest)
#include "LeafDifferencesTest.moc"
