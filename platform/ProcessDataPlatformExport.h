// SPDX-License-Identifier: MIT
// Visibility of the platform's classes outside its shared object.
#ifndef PROCESSDATAPLATFORMEXPORT_H
#define PROCESSDATAPLATFORMEXPORT_H

#include <QtGlobal>

/// Stands before each class and function of the platform that others use.
#define PROCESSDATAPLATFORM_EXPORT Q_DECL_EXPORT

#endif
