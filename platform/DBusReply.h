// SPDX-License-Identifier: MIT
// Result of a blocking D-Bus call.
#ifndef DBUSREPLY_H
#define DBUSREPLY_H

#include "ProcessDataPlatformExport.h"

#include <QString>
#include <QVariant>

#include <utility>

/// Either the value that a service sent or the reason why there is none.
///
/// Returned by value to the library, which asks isError() first and then exactly one of the other
/// two.
///
/// Threads: a value type.
class PROCESSDATAPLATFORM_EXPORT DBusReply
{
public:
    /// A reply that arrived.
    ///
    /// @param value  what the service sent; an invalid one means that it has no description
    /// @returns a reply that is not an error
    static DBusReply fromValue(QVariant value) { return {false, std::move(value), QString()}; }

    /// A call that failed.
    ///
    /// @param message  why, for people
    /// @returns a reply that is an error
    static DBusReply fromError(QString message) { return {true, QVariant(), std::move(message)}; }

    ~DBusReply() = default;
    DBusReply(const DBusReply &) = default;
    DBusReply(DBusReply &&) = default;
    DBusReply &operator=(const DBusReply &) = default;
    DBusReply &operator=(DBusReply &&) = default;

    /// Whether the call failed.
    bool isError() const { return error; }

    /// What the service sent; asked only when isError() is false.
    QVariant getValue() const { return value; }

    /// Why the call failed, for people; asked only when isError() is true.
    QString getErrorMessage() const { return errorMessage; }

private:
    DBusReply(bool error, QVariant value, QString errorMessage)
        : value(std::move(value))
        , errorMessage(std::move(errorMessage))
        , error(error)
    {
    }

    QVariant value;
    QString errorMessage;
    bool error;
};

#endif
