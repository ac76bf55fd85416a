// SPDX-License-Identifier: MIT
// The system status manager's object on the bus.
#ifndef SYSTEMSTATUSOBJECT_H
#define SYSTEMSTATUSOBJECT_H

#include <QDBusVirtualObject>

/// Answers questions for the property Ready.
class SystemStatusObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    using QDBusVirtualObject::QDBusVirtualObject;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    bool ready = false;

private:
    QDBusMessage answerProperties(const QDBusMessage &message) const;
};

#endif
