// SPDX-License-Identifier: MIT
// Visibility of the platform's classes outside its shared object.
#ifndef PROCESSDATAPLATFORMEXPORT_H
#define PROCESSDATAPLATFORMEXPORT_H

#include <QtGlobal>

#define PROCESSDATAPLATFORM_EXPORT Q_DECL_EXPORT

#endif
