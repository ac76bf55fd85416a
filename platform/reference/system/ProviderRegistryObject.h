// SPDX-License-Identifier: MIT
// The system information manager's object on the bus.
#ifndef PROVIDERREGISTRYOBJECT_H
#define PROVIDERREGISTRYOBJECT_H

#include "ProviderTable.h"
#include "ServedCall.h"

#include <QObject>

/// Answers registrations and questions for the list.
class ProviderRegistryObject : public QObject, public ServedObject
{
    Q_OBJECT

public:
    QString introspection() const override;
    BusAnswer answer(const ServedCall &call) override;
    qint64 answerSize(const ServedCall &call) const override;

    /// The bus daemon says that a name has another owner or none.
    void handleOwnerChanged(const QString &name, const QString &owner);

    ProviderTable providers;

Q_SIGNALS:
    void listChanged();

private:
    BusAnswer change(const ServedCall &call, bool add);
    BusAnswer list() const;
};

#endif
