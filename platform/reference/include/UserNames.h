// SPDX-License-Identifier: MIT
// Users and groups as people call them, for messages.
#ifndef USERNAMES_H
#define USERNAMES_H

#include <QString>
#include <QVector>

#include <cerrno>
#include <grp.h>
#include <pwd.h>

/// Threads: any. Asks the system's databases of users: for messages alone, never on the way to a
/// value.
namespace UserNames {

/// @param find  getpwuid_r or getgrgid_r
/// @param name  the entry's member that is its name
/// @returns the name; the number when there is none, or when the database cannot be asked
template <typename Record, typename Find> QString nameOf(quint32 id, Find find, char *Record::*name)
{
    constexpr int usualSize = 1024;
    constexpr int largestSize = 1024 * 1024; // groups of many members
    for (int size = usualSize; size <= largestSize; size *= 4) {
        QVector<char> texts(size);
        Record record{};
        Record *found = nullptr;
        const int error = find(id, &record, texts.data(), size_t(size), &found);
        if (error == ERANGE) {
            continue;
        }
        const QString text
            = error == 0 && found != nullptr ? QString::fromLocal8Bit(found->*name) : QString();
        return text.isEmpty() ? QString::number(id) : text;
    }
    return QString::number(id);
}

inline QString ofUser(quint32 id)
{
    return nameOf<struct passwd>(id, getpwuid_r, &passwd::pw_name);
}

inline QString ofGroup(quint32 id)
{
    return nameOf<struct group>(id, getgrgid_r, &group::gr_name);
}

} // namespace UserNames

#endif
