// SPDX-License-Identifier: MIT
// Constants of the property manager.
#include "PropertyManagerConst.h"

const QString &PropertyManagerConst::getProcessDataDescriptionFileExtension()
{
    static const QString extension = QStringLiteral("pdd");
    return extension;
}
