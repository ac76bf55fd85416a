// SPDX-License-Identifier: MIT
// A bus that is a table in this process: set-up and reading without the cost of D-Bus.
#ifndef INPROCESSBUS_H
#define INPROCESSBUS_H

#include "ProcessDataPlatformExport.h"

#include <QByteArray>
#include <QString>

/// What connectors of this process answer. Everything else of the platform is the real one.
class PROCESSDATAPLATFORM_EXPORT InProcessBus
{
public:
    /// Answers fetches of one instance from now on.
    static void serve(const QString &moduleName, const QString &objectName,
                      const QString &instanceName, const QString &description);

    /// Forgets all descriptions and counts.
    static void clear();

    /// Blocking fetches since clear().
    static int blockingFetches();

    /// Asynchronous fetches since clear().
    static int asynchronousFetches();

    /// Announces a new description of an instance to every connector of its object.
    static void announce(const QString &moduleName, const QString &objectName,
                         const QString &instanceName);
};

#endif
