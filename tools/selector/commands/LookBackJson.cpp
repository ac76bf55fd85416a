// SPDX-License-Identifier: MIT
// Rows of a history for programs, and what they say to people.
#include "LookBackLines.h"

#include "Counted.h"
#include "ErrorTypeText.h"
#include "ValueText.h"

#include <QJsonArray>

#include <array>

namespace {

// In the order of HistoryEvent::Kind.
struct KindTexts
{
    const char *code;
    const char *event;
    const char *gap;
};
constexpr std::array<KindTexts, 8> kinds{{
    {"sourceLost", "source lost", "the source was lost"},
    {"sourceReturned", "source returned", ""},
    {"descriptionChanged", "description changed", ""},
    {"recorderStarted", "recorder started", "the recorder had ended without notice"},
    {"recorderEnded", "recorder ended", "no recorder ran"},
    {"samplesDropped", "samples dropped", "samples were dropped"},
    {"clockSetBack", "a clock was set back", ""},
    {"databaseReplaced", "the database's file was replaced", "the database's file was replaced"},
}};

const KindTexts &textsOf(HistoryEvent::Kind kind)
{
    return kinds.at(size_t(kind));
}

QString codeOf(HistoryEvent::Kind kind)
{
    return QString::fromLatin1(textsOf(kind).code);
}

void insertTime(const char *name, qint64 time, QJsonObject &json)
{
    json.insert(QLatin1String(name), timeToIsoText(time));
    json.insert(QLatin1String(name) + QStringLiteral("Ns"), QString::number(time));
}

void insertText(const char *name, const QString &text, QJsonObject &json)
{
    if (!text.isEmpty()) {
        json.insert(QLatin1String(name), text);
    }
}

void insertSample(const HistorySample &sample, QJsonObject &json)
{
    json.insert(QStringLiteral("time"), timeToIsoText(sample.time));
    json.insert(QStringLiteral("timestampNs"), QString::number(sample.time));
    json.insert(QStringLiteral("value"), valueToJson(shownValue(sample.value)));
    json.insert(QStringLiteral("errorType"),
                errorTypeName(ProcessDataAccess::ErrorType(int(sample.errorType))));
    if (sample.late) {
        json.insert(QStringLiteral("late"), true);
    }
}

QJsonObject extreme(const QVariant &value, qint64 time)
{
    return {{QStringLiteral("value"), valueToJson(shownValue(value))},
            {QStringLiteral("time"), timeToIsoText(time)},
            {QStringLiteral("timestampNs"), QString::number(time)}};
}

void insertPiece(const HistoryPiece &piece, const QStringList &aggregates, QJsonObject &json)
{
    insertTime("from", piece.from, json);
    insertTime("until", piece.until, json);
    json.insert(QStringLiteral("count"), piece.count);
    json.insert(QStringLiteral("numbers"), piece.numbers);
    for (const QString &aggregate : aggregates) {
        QJsonObject sample;
        if (aggregate == QLatin1String("first") || aggregate == QLatin1String("last")) {
            insertSample(aggregate == QLatin1String("first") ? piece.first : piece.last, sample);
            json.insert(aggregate, sample);
        } else if (piece.numbers > 0 && aggregate == QLatin1String("mean")) {
            json.insert(aggregate, valueToJson(piece.mean));
        } else if (piece.numbers > 0) {
            json.insert(aggregate,
                        aggregate == QLatin1String("min")
                            ? extreme(piece.least, piece.leastTime)
                            : extreme(piece.greatest, piece.greatestTime));
        }
    }
}

void insertEvent(const HistoryEvent &event, QJsonObject &json)
{
    json.insert(QStringLiteral("time"), timeToIsoText(event.time));
    json.insert(QStringLiteral("timestampNs"), QString::number(event.time));
    json.insert(QStringLiteral("event"), codeOf(event.kind));
    insertText("subject", event.subject, json);
    insertText("text", event.text, json);
    if (event.number > 0) {
        json.insert(QStringLiteral("number"), event.number);
    }
}

} // namespace

QVariant shownValue(const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::SChar:
    case QMetaType::Short:
        return value.toInt();
    case QMetaType::UChar:
    case QMetaType::UShort:
        return value.toUInt();
    default:
        return value;
    }
}

QJsonObject jsonOf(const PastRow &row, const LookBack &asked, const QStringList &units)
{
    QJsonObject json{{QStringLiteral("kind"), kindName(row.kind)}};
    switch (row.kind) {
    case PastRow::Held:
    case PastRow::Sample:
        insertSample(row.sample, json);
        insertText("unit", units.join(QLatin1Char(' ')), json);
        break;
    case PastRow::Piece:
        insertPiece(row.piece, asked.aggregates, json);
        if (units.size() == 1) {
            insertText("unit", units.constFirst(), json);
        } else {
            json.insert(QStringLiteral("units"), QJsonArray::fromStringList(units));
        }
        break;
    case PastRow::Event:
        insertEvent(row.event, json);
        break;
    case PastRow::Gap:
        insertTime("from", row.gap.from, json);
        insertTime("until", row.gap.until, json);
        json.insert(QStringLiteral("cause"), codeOf(row.gap.kind));
        if (row.gap.number > 0) {
            json.insert(QStringLiteral("number"), row.gap.number);
        }
        break;
    }
    return json;
}

QString noteOf(const HistoryEvent &event)
{
    const QString name = QString::fromLatin1(textsOf(event.kind).event);
    return event.text.isEmpty() ? name : QStringLiteral("%1: %2").arg(name, event.text);
}

QString noteOf(const HistoryGap &gap)
{
    const QString cause = gap.number > 0
        ? QStringLiteral("%1 dropped").arg(counted(gap.number, "sample was", "samples were"))
        : QString::fromLatin1(textsOf(gap.kind).gap);
    return QStringLiteral("gap until %1: %2").arg(timeToText(gap.until), cause);
}
