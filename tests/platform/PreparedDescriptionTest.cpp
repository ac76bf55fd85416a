// SPDX-License-Identifier: MIT
// Equal texts are read once, for as long as somebody holds what they were read to.
#include "PreparedDescription.h"

#include <QWeakPointer>
#include <QtTest>

namespace {

// A text of its own: equal, but shared with nobody.
QString copyOf(const QString &text)
{
    return QString(text.constData(), text.size());
}

QString descriptionOf(int leaves)
{
    QString elements;
    for (int i = 0; i < leaves; ++i) {
        elements += QString(R"(%1{"name":"l%2","type":"float64","offset":%3})")
                        .arg(i == 0 ? "" : ",")
                        .arg(i)
                        .arg(192 + i * 64);
    }
    return QString(
               R"({"format":"process-data-description/1","module":"Pump","object":"Controller",)"
               R"("instance":"1","buffer":{"name":"/processdata.p.1","generation":1,)"
               R"("size":%1,"ownerUid":0},"elements":[%2]})")
        .arg(192 + leaves * 64)
        .arg(elements);
}
}

class PreparedDescriptionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalTextsAreReadOnce();
    void anotherTextOfTheSameLengthIsAnother();
    void whatNobodyHoldsIsForgotten_data();
    void whatNobodyHoldsIsForgotten();
    void aRefusedTextKeepsItsReason();
    void tokensAreEqualForEqualTextsOnly();
};

void PreparedDescriptionTest::equalTextsAreReadOnce()
{
    const QString text = descriptionOf(3);
    const PreparedDescriptionPointer first = prepareDescription(text);
    QVERIFY2(first->content.has_value(), qPrintable(first->error));
    QCOMPARE(first->content->leaves.size(), 3);
    QCOMPARE(prepareDescription(copyOf(text)), first);
}

void PreparedDescriptionTest::anotherTextOfTheSameLengthIsAnother()
{
    const QString text = descriptionOf(3);
    const PreparedDescriptionPointer first = prepareDescription(text);
    const PreparedDescriptionPointer second = prepareDescription(copyOf(text).replace("l2", "k2"));
    QVERIFY(first != second);
    QCOMPARE(second->content->leaves.at(2).path, QString("k2"));
}

void PreparedDescriptionTest::whatNobodyHoldsIsForgotten_data()
{
    QTest::addColumn<int>("leaves");
    QTest::newRow("a small one") << 3;
    QTest::newRow("one that is destroyed in another thread") << 20000;
}

void PreparedDescriptionTest::whatNobodyHoldsIsForgotten()
{
    QFETCH(const int, leaves);
    PreparedDescriptionPointer held = prepareDescription(descriptionOf(leaves));
    QVERIFY2(held->content.has_value(), qPrintable(held->error));
    const QWeakPointer<const PreparedDescription> weak = held;
    held.clear();
    QVERIFY(weak.isNull());
    QCOMPARE(prepareDescription(descriptionOf(leaves))->content->leaves.size(), leaves);
}

void PreparedDescriptionTest::aRefusedTextKeepsItsReason()
{
    const PreparedDescriptionPointer refused = prepareDescription("{}");
    QVERIFY(!refused->content.has_value());
    QVERIFY(!refused->error.isEmpty());
}

void PreparedDescriptionTest::tokensAreEqualForEqualTextsOnly()
{
    const QString text = descriptionOf(3);
    const QString token = descriptionToken(text);
    QCOMPARE(descriptionToken(copyOf(text)), token);
    for (int i = 0; i < text.size(); ++i) {
        QString other = text;
        other[i] = QChar(other.at(i).unicode() ^ 1U);
        QVERIFY2(descriptionToken(other) != token, qPrintable(QString::number(i)));
    }
    QVERIFY(descriptionToken(text + QChar(0)) != token);
    QVERIFY(!token.startsWith('{'));
}

QTEST_GUILESS_MAIN(PreparedDescriptionTest)
#include "PreparedDescriptionTest.moc"
