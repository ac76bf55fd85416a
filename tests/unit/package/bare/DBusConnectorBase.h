// SPDX-License-Identifier: MIT
// The base of connectors.
#ifndef DBUSCONNECTORBASE_H
#define DBUSCONNECTORBASE_H

#include <QObject>

class DBusConnectorBase : public QObject
{
    Q_OBJECT

public:
    ~DBusConnectorBase() override;
    bool isDBusInterfaceValid() const;

protected:
    DBusConnectorBase();
};

#endif
