// SPDX-License-Identifier: MIT
// The file extension.
#ifndef PROPERTYMANAGERCONST_H
#define PROPERTYMANAGERCONST_H

#include <QString>

struct PropertyManagerConst
{
    static const QString &getProcessDataDescriptionFileExtension();
};

#endif
