// SPDX-License-Identifier: MIT
// The name of a source, and the rule for the names that it is made of.
#ifndef SOURCENAME_H
#define SOURCENAME_H

#include <QString>
#include <QStringView>

#include <tuple>

/// Names a source of process data: one instance of an object of a module.
///
/// Threads: a value type.
struct SourceName
{
    QString module;
    QString object;
    QString instance; ///< may be empty

    /// module/object/instance, for people.
    QString toString() const { return QStringLiteral("%1/%2/%3").arg(module, object, instance); }
};

inline bool operator==(const SourceName &left, const SourceName &right)
{
    return left.module == right.module && left.object == right.object
        && left.instance == right.instance;
}

inline bool operator!=(const SourceName &left, const SourceName &right)
{
    return !(left == right);
}

/// By module, then object, then instance.
inline bool operator<(const SourceName &left, const SourceName &right)
{
    return std::tie(left.module, left.object, left.instance)
        < std::tie(right.module, right.object, right.instance);
}

/// Whether text holds a character of Unicode's category Cc: C0, delete, C1. No name does.
bool hasControlCharacter(QStringView text);

/// Whether a selector URL could spell the name of an instance, a group or a leaf: valid Unicode
/// without control characters.
bool isNameText(const QString &text);

/// Whether a key keeps the name of a module or an object apart from what follows it: keys join names
/// with "_", so it is neither empty nor holds "_".
bool isPartOfKey(const QString &name);

#endif
