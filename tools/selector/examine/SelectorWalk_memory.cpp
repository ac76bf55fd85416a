// SPDX-License-Identifier: MIT
// The steps from a source's buffer to the value of its leaf.
#include "DescriptionLeaves.h"
#include "Finding.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorWalk.h"
#include "ValueText.h"

#include <QJsonDocument>

#include <algorithm>
#include <numeric>

namespace {

// How many letters must be put in, taken out or replaced to make one word of the other.
int distance(const QString &left, const QString &right)
{
    QVector<int> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= left.size(); ++i) {
        int diagonal = row.at(0);
        row[0] = i;
        for (int j = 1; j <= right.size(); ++j) {
            const bool same = left.at(i - 1).toCaseFolded() == right.at(j - 1).toCaseFolded();
            const int replaced = diagonal + (same ? 0 : 1);
            diagonal = row.at(j);
            row[j] = std::min({replaced, row.at(j) + 1, row.at(j - 1) + 1});
        }
    }
    return row.constLast();
}

// The leaf that was probably meant; empty when none comes near.
QString nearest(const QString &path, const QVector<DescribedLeaf> &leaves)
{
    constexpr int mostLeaves = 10000; // beyond, looking takes longer than people wait
    constexpr int mostEdits = 3;
    int best = std::min(mostEdits, path.size() / 2) + 1;
    QString result;
    for (int i = 0; i < std::min(mostLeaves, leaves.size()); ++i) {
        const QString &candidate = leaves.at(i).path;
        const int edits
            = std::abs(candidate.size() - path.size()) < best ? distance(path, candidate) : best;
        if (edits < best) {
            best = edits;
            result = candidate;
        }
    }
    return result;
}

QString leafSummary(const QJsonObject &leaf)
{
    const QString unit = leaf.value(QLatin1String("unit")).toString();
    const bool readOnly = leaf.value(QLatin1String("readOnly")).toBool();
    return leaf.value(QLatin1String("type")).toString()
        + (unit.isEmpty() ? QString() : QStringLiteral(", unit ") + unit)
        + (readOnly ? QStringLiteral(", read-only") : QStringLiteral(", writable"));
}

} // namespace

bool SelectorWalk::checkBuffer()
{
    if (buffer.end == BufferInspection::File) {
        return fail(QStringLiteral("%1: %2").arg(buffer.path, buffer.problem),
                    QStringLiteral("something removed it: restart the service %1").arg(service));
    }
    return ok(QStringLiteral("%1, %2 bytes").arg(buffer.path).arg(buffer.size));
}

bool SelectorWalk::checkPermission()
{
    if (buffer.end == BufferInspection::Permission) {
        return fail(QStringLiteral("%1 (%2)").arg(buffer.problem, buffer.permission),
                    QStringLiteral("run as a user in the buffer's group; a buffer of another owner "
                                   "than the description names is forged or left over"),
                    ExitDenied);
    }
    if (buffer.end == BufferInspection::Layout) {
        return ok(buffer.permission);
    }
    return ok(buffer.permission
              + (buffer.writable ? QStringLiteral(", this process may write")
                                 : QStringLiteral(", this process may only read")));
}

bool SelectorWalk::checkLayout()
{
    if (buffer.end == BufferInspection::Layout) {
        return fail(buffer.problem,
                    QStringLiteral("buffer and description do not belong together: try again, and "
                                   "restart the service %1 if it stays")
                        .arg(service));
    }
    return ok(QStringLiteral("as described"));
}

bool SelectorWalk::checkLiveness()
{
    if (buffer.end == BufferInspection::Liveness) {
        return fail(buffer.problem + QStringLiteral("; reads give the last values as SourceLost"),
                    QStringLiteral("restart the service %1").arg(service));
    }
    return ok(QStringLiteral("its publisher lives"));
}

bool SelectorWalk::checkLeaf()
{
    const QJsonObject document = QJsonDocument::fromJson(description.toUtf8()).object();
    const QVector<DescribedLeaf> leaves = leavesBelow(document, QString());
    const auto found = std::find_if(leaves.begin(), leaves.end(), [this](const DescribedLeaf &one) {
        return !parts.path.isNull() && one.path == parts.path;
    });
    if (found == leaves.end()) {
        const QString guess = nearest(parts.path, leaves);
        return fail(
            QStringLiteral("%1 has no leaf \"%2\"").arg(source(), parts.path),
            (guess.isEmpty() ? QString() : QStringLiteral("did you mean \"%1\"? ").arg(guess))
                + QStringLiteral("selector browse %1 lists its leaves").arg(source()));
    }
    leaf = found->properties;
    return ok(parts.path);
}

// While a publisher replaces its buffer a client may come too late for the old one.
QSharedPointer<SelectorHandlerProcessValue> SelectorWalk::client() const
{
    constexpr int attempts = 3;
    QSharedPointer<SelectorHandlerProcessValue> handler;
    for (int i = 0; i < attempts; ++i) {
        // The text without its query: a deactivated selector has no value at any client.
        handler.reset(
            new SelectorHandlerProcessValue({url.section(QLatin1Char('?'), 0, 0)}, nullptr));
        const auto errorType = handler->getValue(0).getErrorType();
        if (errorType != ProcessDataDefinitions::NoValue
            && errorType != ProcessDataDefinitions::SourceLost) {
            break;
        }
    }
    return handler;
}

bool SelectorWalk::checkProperty()
{
    if (!wantedProperties.isEmpty()) {
        // Not the description's keys: clients know properties that are in none.
        const auto handler = client();
        const QString text = handler->getPropertyAsJsonString(0);
        const QStringList known = QJsonDocument::fromJson(text.toUtf8()).object().keys();
        for (const QString &name : wantedProperties) {
            if (!handler->getProperties(name).constFirst().isValid()) {
                return fail(QStringLiteral("the leaf has no property \"%1\"").arg(name),
                            QStringLiteral("it has: %1").arg(known.join(QLatin1String(", "))));
            }
        }
    }
    return ok(leafSummary(leaf));
}

bool SelectorWalk::checkValue()
{
    const ProcessValue value = client()->getValue(0);
    const auto errorType = value.getErrorType();
    if (errorType != ProcessDataDefinitions::NoError) {
        return fail(
            QStringLiteral("%1: %2").arg(errorTypeName(errorType), explainErrorType(errorType)),
            QStringLiteral("nothing is in the way; the cause is in the service %1").arg(service));
    }
    return ok(QStringLiteral("NoError, of %1").arg(timeToText(value.getTimestamp())));
}
