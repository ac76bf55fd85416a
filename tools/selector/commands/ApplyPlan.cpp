// SPDX-License-Identifier: MIT
// Writing, reading back and setting back.
#include "ApplyPlan.h"

#include "Entries.h"
#include "ErrorTypeText.h"
#include "InterruptExit.h"
#include "LiveLeaves.h"
#include "MessageLog.h"
#include "ValueText.h"

#include <algorithm>

namespace {

bool isDeactivated(const ApplyItem &item)
{
    return item.checked.finding.code == Finding::Deactivated;
}

bool hasFailed(const QVector<ApplyItem> &items)
{
    return std::any_of(items.begin(), items.end(),
                       [](const ApplyItem &item) { return item.verdict == ApplyItem::Failed; });
}

void takeChecks(QVector<ApplyItem> &items)
{
    for (ApplyItem &item : items) {
        item.finding = item.checked.finding;
        if (item.finding.code == Finding::None) {
            item.verdict = ApplyItem::Checked;
        } else {
            item.verdict = isDeactivated(item) ? ApplyItem::Left : ApplyItem::Failed;
        }
    }
}

void leaveTheRest(QVector<ApplyItem> &items)
{
    for (ApplyItem &item : items) {
        if (item.verdict == ApplyItem::Checked) {
            item.verdict = ApplyItem::Left;
            item.finding = {Finding::LeftOut, QStringLiteral("not written, another item failed")};
        }
    }
}

bool write(int index, const QVariant &value, Finding &finding, SelectorHandlerProcessValue &handler)
{
    MessageLog::takeWarnings();
    if (handler.setValue(ProcessDataAccess::makeValue(value), index)) {
        return true;
    }
    finding = refusedByMemory();
    return false;
}

void writeAll(QVector<ApplyItem> &items, SelectorHandlerProcessValue &handler)
{
    for (int i = 0; i < items.size(); ++i) {
        ApplyItem &item = items[i];
        if (item.verdict != ApplyItem::Checked) {
            continue;
        }
        if (wasInterrupted()) {
            item.verdict = ApplyItem::Failed;
            item.finding = {Finding::LeftOut, QStringLiteral("interrupted before it was written")};
            return;
        }
        if (!write(i, item.checked.value, item.finding, handler)) {
            item.verdict = ApplyItem::Failed;
            return;
        }
        item.verdict = ApplyItem::Written;
    }
}

void verifyAll(QVector<ApplyItem> &items, SelectorHandlerProcessValue &handler)
{
    for (int i = 0; i < items.size(); ++i) {
        ApplyItem &item = items[i];
        if (item.verdict != ApplyItem::Written) {
            continue;
        }
        item.finding = readBack(handler, i, item.checked.value);
        item.verdict = item.finding.isNone() ? ApplyItem::Verified : ApplyItem::Failed;
    }
}

// What failed the reading back was written too.
void rollBack(QVector<ApplyItem> &items, SelectorHandlerProcessValue &handler)
{
    for (int i = items.size() - 1; i >= 0; --i) {
        ApplyItem &item = items[i];
        const bool failedBehind = item.finding.code == Finding::NotVerified;
        if (!item.isWritten() && !failedBehind) {
            continue;
        }
        Finding problem;
        if (!item.before.isGood()) {
            problem = {Finding::NotReadable,
                       QStringLiteral("not set back: it had no good value before")};
        } else {
            write(i, item.before.value, problem, handler);
        }
        if (problem.code != Finding::None) {
            item.verdict = ApplyItem::NotRestored;
            item.finding = problem;
        } else if (!failedBehind) {
            item.verdict = ApplyItem::Restored;
            item.finding = {Finding::LeftOut, QStringLiteral("set back, another item failed")};
        } else {
            item.finding.text += QStringLiteral("; set back");
        }
    }
}

QString verdictName(ApplyItem::Verdict verdict)
{
    switch (verdict) {
    case ApplyItem::Left:
        return QStringLiteral("left");
    case ApplyItem::Checked:
        return QStringLiteral("checked");
    case ApplyItem::Written:
        return QStringLiteral("written");
    case ApplyItem::Verified:
        return QStringLiteral("verified");
    case ApplyItem::Failed:
        return QStringLiteral("failed");
    case ApplyItem::Restored:
        return QStringLiteral("restored");
    case ApplyItem::NotRestored:
        break;
    }
    return QStringLiteral("notRestored");
}

Entry::State stateOfItem(const ApplyItem &item)
{
    switch (item.verdict) {
    case ApplyItem::Left:
    case ApplyItem::Restored:
        return Entry::Skipped;
    case ApplyItem::Checked:
    case ApplyItem::Written:
    case ApplyItem::Verified:
        return Entry::Good;
    case ApplyItem::Failed:
    case ApplyItem::NotRestored:
        break;
    }
    return Entry::Failed;
}

// Not by ==: Qt takes numbers that are close for the same, -0 for 0, and NaN differs from itself.
bool areSame(const QVariant &one, const QVariant &other)
{
    return one.isValid() == other.isValid() && valueToText(one) == valueToText(other);
}

} // namespace

int valuesToWrite(const QVector<ApplyItem> &items)
{
    int count = 0;
    for (const ApplyItem &item : items) {
        if (!item.checked.finding.isNone() && !isDeactivated(item)) {
            return 0;
        }
        count += isDeactivated(item) ? 0 : 1;
    }
    return count;
}

Finding readBack(SelectorHandlerProcessValue &handler, int position, const QVariant &written)
{
    const LeafValue now = handler.getValue(position);
    if (now.isGood() && areSame(now.value, written)) {
        return {};
    }
    return {Finding::NotVerified,
            QStringLiteral("reads back as %1 (%2)")
                .arg(valueToText(now.value), errorTypeName(now.errorType))};
}

QVariant goodValue(const LeafValue &value)
{
    return value.isGood() ? value.value : QVariant();
}

void apply(QVector<ApplyItem> &items, const ApplyOptions &options,
           SelectorHandlerProcessValue &handler)
{
    takeChecks(items);
    if (hasFailed(items)) {
        leaveTheRest(items);
        return;
    }
    if (options.dryRun) {
        return;
    }
    writeAll(items, handler);
    if (options.verify && !hasFailed(items)) {
        verifyAll(items, handler);
    }
    if (hasFailed(items)) {
        leaveTheRest(items);
        if (options.rollback) {
            rollBack(items, handler);
        }
    }
}

QVector<Column> applyColumns()
{
    return columnsOf("line> url before> value> unit result note label|");
}

Entry applyEntry(const ApplyItem &item)
{
    const ListLine &line = item.checked.line;
    const QVariant &value = item.checked.value;
    const QVariant before = goodValue(item.before);
    const QString verdict = verdictName(item.verdict);
    Entry entry = lineEntry(line, item.finding, stateOfItem(item));
    entry.json.insert(QStringLiteral("result"), verdict);
    entry.json.insert(QStringLiteral("before"), valueToJson(before));
    entry.json.insert(QStringLiteral("value"),
                      value.isValid() ? valueToJson(value) : QJsonValue(line.value));
    const QString unit = item.checked.properties.value(QLatin1String("unit")).toString();
    if (!unit.isEmpty()) {
        entry.json.insert(QStringLiteral("unit"), unit);
    }
    entry.rows.append({QString::number(line.number), selectorCell(line.url, line.label),
                       Cell(valueToShortText(before), valueToText(before)),
                       value.isValid() ? valueToText(value) : line.value, unit, verdict,
                       item.finding.text, line.label});
    return entry;
}
