// SPDX-License-Identifier: MIT
// Report entries of values, writes, properties and leaves.
#include "Entries.h"

#include "ErrorTypeText.h"
#include "NearMiss.h"
#include "ValueText.h"

namespace {

QString textOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

Entry urlEntry(const QString &url, const QString &label, const Finding &finding)
{
    Entry entry = entryOf(url, finding);
    entry.json.insert(QStringLiteral("url"), url);
    insertLabel(label, entry.json);
    return entry;
}

void copyText(const QJsonObject &from, const char *key, QJsonObject &to)
{
    if (from.contains(QLatin1String(key))) {
        to.insert(QLatin1String(key), from.value(QLatin1String(key)));
    }
}

// Single values as they are written everywhere, with all digits.
QJsonValue propertyJson(const QVariant &value)
{
    const QJsonValue json = QJsonValue::fromVariant(value);
    return json.isArray() || json.isObject() ? json : valueToJson(value);
}

QString propertyText(const QVariant &value)
{
    const QJsonValue json = propertyJson(value);
    return json.isArray() || json.isObject() ? propertyToText(json) : valueToText(value);
}

// An empty text is a value, too.
Cell valueCell(const QString &text, const QString &machineText, bool holdsValue = true)
{
    Cell cell(text, machineText);
    cell.holdsValue = holdsValue;
    return cell;
}

// What is not a good value is a comment there, so that nobody takes it for one.
QString pairOf(const ReadResult &result, const ReadRow &row)
{
    if (row.state == Entry::Good) {
        return listText({0, result.url, valueToText(result.value.value), true, result.label});
    }
    return QStringLiteral("# %1: %2").arg(printable(result.url), printable(row.note));
}

// Which property was probably meant, behind a reason.
QString propertyHint(const QString &name, const PropertiesResult &result)
{
    const QString hint = didYouMean(name, result.known);
    return hint.isEmpty() ? QString() : QStringLiteral("; ") + hint;
}

// That a lost value is old, too, says how long it has been lost.
QString noteOf(const ReadResult &result)
{
    QStringList texts;
    if (result.finding.text.isEmpty() || result.finding.code == Finding::Stale) {
        texts.append(explainErrorType(result.value.errorType));
    }
    texts.append(result.finding.text);
    texts.removeAll(QString());
    return texts.join(QStringLiteral("; "));
}

} // namespace

QString stateName(Entry::State state)
{
    switch (state) {
    case Entry::Skipped:
        return QStringLiteral("skipped");
    case Entry::Doubtful:
        return QStringLiteral("doubtful");
    case Entry::Failed:
        return QStringLiteral("failed");
    case Entry::Good:
        break;
    }
    return QStringLiteral("ok");
}

Entry::State stateOf(const Finding &finding)
{
    switch (finding.code) {
    case Finding::None:
        return Entry::Good;
    case Finding::Deactivated:
        return Entry::Skipped;
    case Finding::Duplicate:
    case Finding::Stale:
        return Entry::Doubtful;
    default:
        return Entry::Failed;
    }
}

Entry entryOf(const QString &subject, const Finding &finding)
{
    Entry entry;
    entry.subject = subject;
    entry.state = stateOf(finding);
    entry.reason = finding.text;
    entry.json.insert(QStringLiteral("status"), stateName(entry.state));
    if (!finding.isNone()) {
        entry.failure = finding.exitCode();
        entry.json.insert(QStringLiteral("code"), finding.codeName());
        entry.json.insert(QStringLiteral("reason"), finding.text);
    }
    return entry;
}

Entry lineEntry(const ListLine &line, const Finding &finding, Entry::State state)
{
    Entry entry = entryOf(QStringLiteral("line %1: %2").arg(line.number).arg(line.url), finding);
    entry.state = state;
    entry.json.insert(QStringLiteral("status"), stateName(state));
    entry.json.insert(QStringLiteral("line"), line.number);
    entry.json.insert(QStringLiteral("url"), line.url);
    insertLabel(line.label, entry.json);
    return entry;
}

Cell selectorCell(const QString &url, const QString &label)
{
    return {label.isEmpty() ? url : label, url};
}

void insertLabel(const QString &label, QJsonObject &json)
{
    if (!label.isEmpty()) {
        json.insert(QStringLiteral("label"), label);
    }
}

QVector<Column> readColumns()
{
    return columnsOf("url value> unit error time note label|");
}

ReadRow readRow(const ReadResult &result)
{
    ReadRow row;
    row.state = stateOf(result.finding);
    if (row.state == Entry::Good && !result.value.isGood()) {
        row.state = result.value.isMissing() ? Entry::Failed : Entry::Doubtful;
    }
    if (row.state == Entry::Good || row.state == Entry::Doubtful) {
        const QVariant &value = result.value.value;
        row.value = valueCell(valueToShortText(value), valueToText(value), value.isValid());
        row.timestamp = result.value.timestamp;
    }
    row.unit = textOf(result.properties, "unit");
    row.error = errorTypeName(result.value.errorType);
    row.note = noteOf(result);
    return row;
}

Entry readEntry(const ReadResult &result)
{
    const ReadRow row = readRow(result);
    const bool hasValue = row.state == Entry::Good || row.state == Entry::Doubtful;
    Entry entry = urlEntry(result.url, result.label, result.finding);
    entry.state = row.state;
    entry.reason = row.note;
    entry.json.insert(QStringLiteral("status"), stateName(row.state));
    entry.json.insert(QStringLiteral("errorType"), row.error);
    entry.json.insert(QStringLiteral("value"),
                      valueToJson(hasValue ? result.value.value : QVariant()));
    if (hasValue) {
        copyText(result.properties, "type", entry.json);
        copyText(result.properties, "unit", entry.json);
    }
    if (!row.note.isEmpty()) {
        entry.json.insert(QStringLiteral("reason"), row.note);
    }
    if (row.timestamp != 0) {
        entry.json.insert(QStringLiteral("time"), timeToIsoText(row.timestamp));
        entry.json.insert(QStringLiteral("timestampNs"), QString::number(row.timestamp));
    }
    entry.rows.append({selectorCell(result.url, result.label), row.value, row.unit, row.error,
                       Cell(timeToText(row.timestamp), timeToIsoText(row.timestamp)), row.note,
                       result.label});
    entry.pair = pairOf(result, row);
    return entry;
}

QVector<Column> writeColumns()
{
    return columnsOf("url before>+ value> unit result note label|");
}

Entry writeEntry(const WriteResult &result)
{
    Entry entry = urlEntry(result.url, result.label, result.finding);
    copyText(result.properties, "type", entry.json);
    copyText(result.properties, "unit", entry.json);
    entry.json.insert(QStringLiteral("before"), valueToJson(result.before));
    entry.json.insert(QStringLiteral("value"),
                      result.value.isValid() ? valueToJson(result.value) : QJsonValue(result.text));
    const QString shown = result.value.isValid() ? valueToText(result.value) : result.text;
    const QString good = result.verified ? QStringLiteral("verified") : QStringLiteral("written");
    const QString verdict = entry.state == Entry::Good ? good : stateName(entry.state);
    entry.rows.append({selectorCell(result.url, result.label),
                       Cell(valueToShortText(result.before), valueToText(result.before)), shown,
                       textOf(result.properties, "unit"), verdict, entry.reason, result.label});
    return entry;
}

QVector<Column> propertiesColumns()
{
    return columnsOf("url property value note label|");
}

Entry propertiesEntry(const PropertiesResult &result)
{
    Finding finding = result.finding;
    const Cell selector = selectorCell(result.url, result.label);
    QVector<Row> rows;
    QJsonObject properties;
    QStringList missing;
    for (const auto &property : result.properties) {
        if (property.second.isValid()) {
            properties.insert(property.first, propertyJson(property.second));
            const QString text = propertyText(property.second);
            rows.append({selector, property.first, valueCell(text, text), QString(), result.label});
        } else {
            missing.append(property.first);
            rows.append({selector, property.first, QString(),
                         QStringLiteral("the leaf has no such property")
                             + propertyHint(property.first, result),
                         result.label});
        }
    }
    if (finding.isNone() && !missing.isEmpty()) {
        finding = {
            Finding::NoSuchProperty,
            QStringLiteral("the leaf has no property \"%1\"")
                    .arg(missing.join(QLatin1String("\", \"")))
                + (missing.size() == 1 ? propertyHint(missing.constFirst(), result) : QString())};
    }
    Entry entry = urlEntry(result.url, result.label, finding);
    if (result.finding.isNone()) {
        entry.rows = rows;
        entry.json.insert(QStringLiteral("properties"), properties);
    } else {
        entry.rows = {{selector, QString(), QString(), finding.text, result.label}};
    }
    return entry;
}

QVector<Column> leafColumns()
{
    return columnsOf("url type unit access description");
}

Entry leafEntry(const QString &url, const QString &path, const QJsonObject &properties)
{
    Entry entry;
    entry.subject = url;
    const QString access = properties.value(QLatin1String("readOnly")).toBool()
        ? QStringLiteral("read-only")
        : QStringLiteral("writable");
    entry.json = {{QStringLiteral("url"), url},
                  {QStringLiteral("status"), QStringLiteral("ok")},
                  {QStringLiteral("path"), path},
                  {QStringLiteral("access"), access}};
    for (const char *key :
         {"type", "unit", "description", "selectorType", "minimum", "maximum", "capacity"}) {
        copyText(properties, key, entry.json);
    }
    entry.rows.append({url, textOf(properties, "type"), textOf(properties, "unit"), access,
                       textOf(properties, "description")});
    return entry;
}
