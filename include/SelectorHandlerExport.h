// SPDX-License-Identifier: MIT
// Visibility of the library's classes outside its shared object.
#ifndef SELECTORHANDLEREXPORT_H
#define SELECTORHANDLEREXPORT_H

#include <QtGlobal>

/// Stands before each class of the library that clients use.
#define SELECTORHANDLER_EXPORT Q_DECL_EXPORT

#endif
