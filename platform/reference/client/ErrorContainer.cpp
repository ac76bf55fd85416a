// SPDX-License-Identifier: MIT
// Prints D-Bus errors.
#include "ErrorContainer.h"

#include <QDebugStateSaver>

QDebug operator<<(QDebug debug, const ErrorContainer &error)
{
    const QDebugStateSaver saver(debug);
    debug.resetFormat();
    debug.nospace() << "ErrorContainer(" << error.getCode() << ", " << error.getText() << ')';
    return debug;
}
