// SPDX-License-Identifier: MIT
// Makes the pending replies of the script.
#ifndef SCRIPTEDPENDINGREPLY_H
#define SCRIPTEDPENDINGREPLY_H

#include <QSharedPointer>

class DBusPendingReply;
class SourceScript;

/// @param source  whose trees are built from what the reply will hold
QSharedPointer<DBusPendingReply> makePendingReply(const QSharedPointer<SourceScript> &source);

#endif
