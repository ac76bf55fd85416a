// SPDX-License-Identifier: MIT
// What may follow a word that a person is typing.
#ifndef COMPLETION_H
#define COMPLETION_H

#include <QString>
#include <QStringList>

/// A selector URL or a place as far as it is typed.
struct TypedPlace
{
    QString base; ///< text in front of what is completed: label, scheme, whole names
    QStringList names; ///< whole names, decoded: module, object, instance, groups
    QString begin; ///< of the name that is being typed, as typed
};

/// @param isUrl  whether a selector is wanted, perhaps behind NAME=; one that begins as the scheme
///               does gets the whole scheme, any other stays a short path
TypedPlace typedPlace(const QString &text, bool isUrl);

/// Whole words: those of the names, percent-encoded, that go on from what is typed.
///
/// @param end  put behind each; "/" where more follows
QStringList completions(const TypedPlace &place, const QStringList &names, const QString &end);

/// The names that follow a group among paths of leaves, each once, in order; those of groups end
/// in "/".
///
/// @param group  path of a group; empty: all
QStringList namesBelow(const QStringList &paths, const QString &group);

#endif
