// SPDX-License-Identifier: MIT
// Description of a D-Bus error.
#ifndef ERRORCONTAINER_H
#define ERRORCONTAINER_H

#include "ProcessDataPlatformExport.h"

#include <QDebug>
#include <QMetaType>
#include <QString>

#include <utility>

/// What went wrong in a D-Bus call.
///
/// Travels as the argument of DBusPendingReply::dBusServiceError into slots of the library, also
/// across threads: an implementer registers it with Qt's meta-type system before a pending reply
/// can report, because Qt 5.15 drops queued string connections whose argument types nobody
/// registered.
///
/// Threads: a value type.
class PROCESSDATAPLATFORM_EXPORT ErrorContainer
{
public:
    /// No error: code 0 and a null text.
    ErrorContainer() = default;

    /// @param code  the platform's number of the error, 0 for none
    /// @param text  what went wrong, for people
    ErrorContainer(qint32 code, QString text)
        : code(code)
        , text(std::move(text))
    {
    }

    virtual ~ErrorContainer() = default;
    ErrorContainer(const ErrorContainer &) = default;
    ErrorContainer(ErrorContainer &&) = default;
    ErrorContainer &operator=(const ErrorContainer &) = default;
    ErrorContainer &operator=(ErrorContainer &&) = default;

    /// The platform's number of the error, 0 for none.
    qint32 getCode() const { return code; }

    /// What went wrong, for people.
    QString getText() const { return text; }

private:
    qint32 code = 0;
    QString text;
};

/// Prints the error; the library writes it after the literal "DBus error".
PROCESSDATAPLATFORM_EXPORT QDebug operator<<(QDebug debug, const ErrorContainer &error);

Q_DECLARE_METATYPE(ErrorContainer)

#endif
