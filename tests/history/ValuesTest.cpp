// SPDX-License-Identifier: MIT
// Values come back with their type and every bit, from files and from a server.
#include "HistorySupport.h"
#include "PostgresCluster.h"

#include <QUuid>

#include <cstring>

using namespace HistorySupport;

namespace {

struct Kept
{
    const char *name;
    HistoryType type;
    QVector<QVariant> values;
};

template <typename Float, typename Bits> QVariant fromBits(Bits bits)
{
    Float value;
    std::memcpy(&value, &bits, sizeof value);
    return QVariant::fromValue(value);
}

template <typename Integer> QVector<QVariant> extremes()
{
    return {QVariant::fromValue(std::numeric_limits<Integer>::min()),
            QVariant::fromValue(std::numeric_limits<Integer>::max()),
            QVariant::fromValue(Integer(0)), QVariant::fromValue(Integer(1))};
}

QVector<Kept> everyType()
{
    const double infinity = std::numeric_limits<double>::infinity();
    return {
        {"bool", HistoryType::Bool, {true, false}},
        {"int8", HistoryType::Int8, extremes<qint8>()},
        {"int16", HistoryType::Int16, extremes<qint16>()},
        {"int32", HistoryType::Int32, extremes<int>()},
        {"int64", HistoryType::Int64, extremes<qint64>()},
        {"uint8", HistoryType::UInt8, extremes<quint8>()},
        {"uint16", HistoryType::UInt16, extremes<quint16>()},
        {"uint32", HistoryType::UInt32, extremes<uint>()},
        {"uint64", HistoryType::UInt64,
         extremes<quint64>() + QVector<QVariant>{quint64(1) << 63U, (quint64(1) << 63U) - 1}},
        {"float32",
         HistoryType::Float32,
         {0.1F, 0.0F, -0.0F, float(infinity), float(-infinity), 1e-45F, 3.4028235e38F, 16777217.0F,
          fromBits<float>(quint32(0x7fc00000)), fromBits<float>(quint32(0xffc12345)),
          fromBits<float>(quint32(0x7f800001))}},
        {"float64",
         HistoryType::Float64,
         {0.1, 0.0, -0.0, infinity, -infinity, 5e-324, 1.7976931348623157e308, 9007199254740993.0,
          3.0, -1e300, fromBits<double>(quint64(0x7ff8000000000000)),
          fromBits<double>(quint64(0xfff80000deadbeef)),
          fromBits<double>(quint64(0x7ff0000000000001))}},
        {"text",
         HistoryType::Text,
         {QVariant(QString("°C")), QString(""), QString(QChar(0xFEFF)) + QChar(0xFEFF) + "mark",
          QString("a") + QChar(0) + "b", QString(QChar(0)), QString("it's \"{quoted}\", \\x00")}},
        {"bytes",
         HistoryType::Bytes,
         {QByteArray("\0\xff\x80'", 4), QByteArray(""), QByteArray("\\x00"), QByteArray(70, '{')}},
    };
}

bool sameBits(const QVariant &left, const QVariant &right)
{
    if (left.userType() != right.userType() || left.isValid() != right.isValid()) {
        return false;
    }
    if (left.userType() == QMetaType::Double) {
        return std::memcmp(left.constData(), right.constData(), sizeof(double)) == 0;
    }
    if (left.userType() == QMetaType::Float) {
        return std::memcmp(left.constData(), right.constData(), sizeof(float)) == 0;
    }
    return left == right;
}

} // namespace

class ValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyValueComesBackWithItsTypeAndEveryBit_data();
    void everyValueComesBackWithItsTypeAndEveryBit();
    void anAbsentValueIsNotAnEmptyOne_data() { places(); }
    void anAbsentValueIsNotAnEmptyOne();
    void whatIsWrittenAgainAfterARestartIsStoredOnce_data() { places(); }
    void whatIsWrittenAgainAfterARestartIsStoredOnce();
    void aValueOfAnotherTypeIsRefused();

private:
    void places();
    QString database(const QString &place);

    QTemporaryDir folder;
    std::unique_ptr<PostgresCluster> cluster;
};

void ValuesTest::places()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("in a file") << QString("file");
    QTest::newRow("in a server") << QString("server");
}

QString ValuesTest::database(const QString &place)
{
    if (place == "file") {
        return folder.filePath(QUuid::createUuid().toString(QUuid::Id128));
    }
    if (!cluster) {
        cluster = std::make_unique<PostgresCluster>();
        const QString problem = cluster->create();
        if (!problem.isEmpty()) {
            qFatal("%s", qPrintable(problem));
        }
    }
    return cluster->database();
}

void ValuesTest::everyValueComesBackWithItsTypeAndEveryBit_data()
{
    places();
}

void ValuesTest::everyValueComesBackWithItsTypeAndEveryBit()
{
    QFETCH(QString, place);
    const QString where = database(place);
    const QVector<Kept> all = everyType();
    {
        HistoryWriter writer(settings(where));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        for (const Kept &kept : all) {
            const int series = writer.addSeries({kept.name, kept.type, "", "", 0});
            for (int i = 0; i < kept.values.size(); ++i) {
                QVERIFY(writer.append(series, sample(1000 + i, kept.values.at(i))));
            }
        }
        QVERIFY(writer.flush());
    }
    for (const Kept &kept : all) {
        const QVector<HistorySample> found = stored(where, kept.name);
        QCOMPARE(found.size(), kept.values.size());
        for (int i = 0; i < found.size(); ++i) {
            QVERIFY2(sameBits(found.at(i).value, kept.values.at(i)),
                     qPrintable(QString("%1[%2]").arg(kept.name).arg(i)));
            QCOMPARE(found.at(i).time, qint64(1000 + i));
        }
    }
}

void ValuesTest::anAbsentValueIsNotAnEmptyOne()
{
    QFETCH(QString, place);
    const QString where = database(place);
    {
        HistoryWriter writer(settings(where));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        for (const HistoryType type : {HistoryType::Text, HistoryType::Bytes, HistoryType::Bool}) {
            const int series = writer.addSeries({QString::number(int(type)), type, "", "", 0});
            QVERIFY(writer.append(series, sample(1, {}, ProcessDataDefinitions::NoValue)));
        }
        QVERIFY(writer.append(writer.addSeries({"null text", HistoryType::Text, "", "", 0}),
                              sample(1, QString())));
        QVERIFY(writer.append(writer.addSeries({"null bytes", HistoryType::Bytes, "", "", 0}),
                              sample(1, QByteArray())));
    }
    for (const HistoryType type : {HistoryType::Text, HistoryType::Bytes, HistoryType::Bool}) {
        const QVector<HistorySample> found = stored(where, QString::number(int(type)));
        QCOMPARE(found.size(), 1);
        QVERIFY(!found.at(0).value.isValid());
        QCOMPARE(found.at(0).errorType, ProcessDataDefinitions::NoValue);
    }
    QCOMPARE(stored(where, "null text").value(0).value, QVariant(QString("")));
    QCOMPARE(stored(where, "null bytes").value(0).value, QVariant(QByteArray("")));
}

// As after a commit whose outcome nobody learnt.
void ValuesTest::whatIsWrittenAgainAfterARestartIsStoredOnce()
{
    QFETCH(QString, place);
    const QString where = database(place);
    for (int round = 0; round < 2; ++round) {
        HistoryWriter writer(settings(where));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        for (const Kept &kept : everyType()) {
            const int series
                = writer.addSeries({QString("again ") + kept.name, kept.type, "", "", 0});
            for (int i = 0; i < kept.values.size(); ++i) {
                QVERIFY(writer.append(series, sample(1000 + i, kept.values.at(i))));
            }
            QVERIFY(writer.append(series, sample(999, {}, ProcessDataDefinitions::NoValue)));
        }
    }
    for (const Kept &kept : everyType()) {
        QCOMPARE(stored(where, QString("again ") + kept.name).size(), kept.values.size() + 1);
    }
}

void ValuesTest::aValueOfAnotherTypeIsRefused()
{
    HistoryWriter writer(settings(database("file")));
    const int series = writer.addSeries(numbers());

    QVERIFY(!writer.append(series, sample(1, 5)));
    QVERIFY(!writer.append(series, sample(1, 5.0)));
    QVERIFY(!writer.append(series + 1, sample(1, qint64(5))));
    QVERIFY(!writer.append(-1, sample(1, qint64(5))));
    QVERIFY(!writer.append(series, sample(std::numeric_limits<qint64>::min(), qint64(5))));
    QVERIFY(writer.append(series, sample(1, qint64(5))));
}

QTEST_GUILESS_MAIN(ValuesTest)

#include "ValuesTest.moc"
