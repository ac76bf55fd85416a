// SPDX-License-Identifier: MIT
// A pending reply.
#ifndef DBUSPENDINGREPLY_H
#define DBUSPENDINGREPLY_H

#include "ErrorContainer.h"

#include <QObject>
#include <QVariant>

class DBusPendingReply : public QObject
{
    Q_OBJECT

public:
    ~DBusPendingReply() override;
    QVariant getReply();

Q_SIGNALS:
    void dBusServiceFinished();
    void dBusServiceError(const ErrorContainer &error);

private:
    DBusPendingReply();
};

#endif
