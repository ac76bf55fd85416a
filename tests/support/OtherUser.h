// SPDX-License-Identifier: MIT
// Lets a program that was started by root go on as another user.
#ifndef OTHERUSER_H
#define OTHERUSER_H

#include <QString>
#include <QStringList>
#include <QVector>

#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

/// Within the process, so that the other user needs no access to the tree that it was built in.
///
/// @param user  "UID:GID" or "UID:GID,GID…"; the first group is the process's own
inline bool becomeUser(const QString &user)
{
    const uid_t uid = user.section(':', 0, 0).toUInt();
    const QStringList names = user.section(':', 1).split(',');
    QVector<gid_t> groups;
    for (const QString &name : names) {
        groups += name.toUInt();
    }
    const gid_t own = groups.at(0);
    return ::setgroups(size_t(groups.size()), groups.constData()) == 0
        && ::setresgid(own, own, own) == 0 && ::setresuid(uid, uid, uid) == 0
        && ::prctl(PR_SET_DUMPABLE, 1) == 0; // as if started as that user; leak checkers need it
}

#endif
