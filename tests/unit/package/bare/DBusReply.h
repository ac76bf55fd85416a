// SPDX-License-Identifier: MIT
// A reply that can only be returned and asked.
#ifndef DBUSREPLY_H
#define DBUSREPLY_H

#include <QString>
#include <QVariant>

class DBusReply
{
public:
    ~DBusReply();
    DBusReply(const DBusReply &) = delete;
    bool isError() const;
    QString getErrorMessage() const;
    QVariant getValue() const;

private:
    friend class DBusProcessDescriptionConnector;
    DBusReply(const QVariant &value, const QString &error);

    const QVariant value;
    const QString error;
};

#endif
