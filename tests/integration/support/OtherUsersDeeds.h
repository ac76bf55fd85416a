// SPDX-License-Identifier: MIT
// What another user does beside a test: a shell command, or a client that reads and writes.
#ifndef OTHERUSERSDEEDS_H
#define OTHERUSERSDEEDS_H

#include "ChildProcess.h"

/// What a shell command that the user ("UID:GID", see OtherUser.h) gives comes to.
struct Deed
{
    Deed(const QString &user, const QString &command)
    {
        const QString uid = user.section(':', 0, 0);
        const QString gid = user.section(':', 1).section(',', 0, 0);
        ChildProcess shell("setpriv",
                           {"--reuid", uid, "--regid", gid, "--clear-groups", "sh", "-c", command});
        done = shell.run() && shell.exitCode() == 0;
        output = shell.output();
        errors = shell.errors();
    }

    bool done = false;
    QByteArray output;
    QByteArray errors;
};

/// What the user's client gets of a selector: "ERRORTYPE VALUE written|refused".
struct Reading
{
    Reading(const char *user, const QString &url)
    {
        ChildProcess client(INTEGRATION_CLIENT, {user, url});
        if (client.run()) {
            line = client.output().trimmed();
        }
        errors = client.errors();
    }

    QByteArray line;
    QByteArray errors;
};

#endif
