// SPDX-License-Identifier: MIT
// Whether a description is read just as Qt's own JSON reader and writer would have it.
#ifndef QTJSONORACLE_H
#define QTJSONORACLE_H

#include "ProcessDataDescription.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace QtJsonOracle {

/// The leaves of a document in their order, as Qt reads them.
inline void collectLeaves(const QJsonObject &parent, QVector<QJsonObject> &leaves)
{
    const QJsonArray elements = parent.value("elements").toArray();
    for (const QJsonValue &element : elements) {
        if (element.toObject().contains("elements")) {
            collectLeaves(element.toObject(), leaves);
        } else {
            leaves.append(element.toObject());
        }
    }
}

inline bool isSame(const QVariant &left, const QVariant &right)
{
    return left.userType() == right.userType() && left == right;
}

/// Whether Qt gives the keys in the order of their names, each once. It does not when it holds some
/// as UTF-8 and others, which had escapes, as UTF-16.
inline bool isOrderedByQt(const QJsonObject &object)
{
    const QStringList keys = object.keys();
    const auto isOutOfOrder = [](const QString &left, const QString &right) {
        return !(left.toUcs4() < right.toUcs4());
    };
    return std::adjacent_find(keys.begin(), keys.end(), isOutOfOrder) == keys.end();
}

/// Whether a key begins with a byte-order mark, which Qt drops in some of its steps.
inline bool hasMarkedKey(const QByteArray &text)
{
    static const QRegularExpression marked(
        "\"(\\x{EF}\\x{BB}\\x{BF}|\\\\u[fF][eE][fF][fF])(\\\\.|[^\"\\\\])*\"\\s*:");
    return QString::fromLatin1(text).contains(marked);
}

/// The text with each whole number as Qt's writer rounds it; only those are rendered unlike Qt.
inline QByteArray roundedByQt(const QByteArray &json)
{
    static const QRegularExpression token(
        "\"(?:\\\\.|[^\"\\\\])*\"|(?<![0-9.eE+-])-?[0-9]+(?![0-9.eE])");
    QString text = QString::fromLatin1(json); // bytes stay bytes
    QRegularExpressionMatchIterator found = token.globalMatch(text);
    QByteArray result;
    int end = 0;
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        result += text.midRef(end, match.capturedStart() - end).toLatin1();
        end = match.capturedEnd();
        const QByteArray spelled = match.captured().toLatin1();
        result += spelled.startsWith('"') ? spelled
                                          : QJsonDocument::fromJson('[' + spelled + ']')
                                                .toJson(QJsonDocument::Compact)
                                                .mid(1)
                                                .chopped(1);
    }
    return result + text.midRef(end).toLatin1();
}

/// A number as Qt's reader has it.
inline QVariant asQtReads(const QVariant &value)
{
    return value.userType() == QMetaType::ULongLong ? QVariant(value.toDouble()) : value;
}

/// What is not as Qt has it of one leaf; empty when all is.
inline QString leafDifference(const LeafDescription &leaf, const QJsonObject &object)
{
    // As texts: Qt finds two texts unequal of which one has a byte-order mark that both do not show.
    if (QJsonDocument(leaf.properties.toObject()).toJson() != QJsonDocument(object).toJson()) {
        return "the properties of " + leaf.path;
    }
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (!leaf.properties.contains(member.key())
            || !isSame(asQtReads(leaf.properties.value(member.key())),
                       member.value().toVariant())) {
            return "the property " + member.key() + " of " + leaf.path;
        }
    }
    QJsonObject rendered = object;
    rendered.remove("offset");
    rendered.insert("session", 42);
    QByteArray text("before ");
    leaf.properties.render("42", text);
    if (roundedByQt(text) != "before " + QJsonDocument(rendered).toJson(QJsonDocument::Compact)) {
        return "the text of " + leaf.path + ": " + QString::fromUtf8(text);
    }
    return QString();
}

/// The same of two leaves, one of which was read from what Qt had read.
inline bool isSameLeaf(const LeafDescription &left, const LeafDescription &right)
{
    return left.path == right.path && left.type == right.type && left.capacity == right.capacity
        && left.offset == right.offset && left.readOnly == right.readOnly
        && isSame(left.minimum, right.minimum) && isSame(left.maximum, right.maximum);
}

/// Whether there may be a number that Qt's objects, which hold an int64 or a double, do not hold.
inline bool hasWideNumber(const QByteArray &text)
{
    static const QRegularExpression wide("[0-9]{19}");
    return QString::fromLatin1(text).contains(wide);
}

/// What is not as Qt has it; empty when all is, also when both refuse the text with one reason.
inline QString difference(const QByteArray &text, DescriptionForm form)
{
    QString error;
    const auto description = parseDescription(text, form, error);
    QJsonParseError reason;
    const QJsonDocument document = QJsonDocument::fromJson(text, &reason);
    if (reason.error != QJsonParseError::NoError) {
        const QString expected = QString("description: no JSON: %1 at byte %2")
                                     .arg(reason.errorString())
                                     .arg(reason.offset);
        return !description && error == expected ? QString() : "no JSON, but: " + error;
    }
    if (!document.isObject()) {
        return !description && error == "description: must be a JSON object"
            ? QString()
            : "no object, but: " + error;
    }
    QString otherError;
    const auto other = parseDescription(document.object(), form, otherError);
    const bool isWide = hasWideNumber(text);
    if (!isWide && (description.has_value() != other.has_value() || error != otherError)) {
        return error + " instead of " + otherError;
    }
    const bool isMarked = hasMarkedKey(text);
    QVector<QJsonObject> leaves;
    collectLeaves(document.object(), leaves);
    if (description && description->leaves.size() != leaves.size()) {
        return QString("%1 leaves").arg(description->leaves.size());
    }
    for (int i = 0; description && i < leaves.size(); ++i) {
        if (isMarked || !isOrderedByQt(leaves.at(i))) {
            continue;
        }
        const QString found = leafDifference(description->leaves.at(i), leaves.at(i));
        if (!found.isEmpty()
            || (!isWide && !isSameLeaf(description->leaves.at(i), other->leaves.at(i)))) {
            return found.isEmpty() ? description->leaves.at(i).path : found;
        }
    }
    return QString();
}

} // namespace QtJsonOracle

#endif
