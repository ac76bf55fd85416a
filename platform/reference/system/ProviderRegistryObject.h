// SPDX-License-Identifier: MIT
// The system information manager's object on the bus.
#ifndef PROVIDERREGISTRYOBJECT_H
#define PROVIDERREGISTRYOBJECT_H

#include "ProviderTable.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

/// Answers registrations and questions for the list.
class ProviderRegistryObject : public QDBusVirtualObject
{
    Q_OBJECT

public:
    using QDBusVirtualObject::QDBusVirtualObject;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    ProviderTable providers;

public Q_SLOTS:
    /// The bus daemon says that a name has another owner or none.
    void handleOwnerChanged(const QDBusMessage &message);

Q_SIGNALS:
    void listChanged();

private:
    QDBusMessage answer(const QDBusMessage &message);
};

#endif
