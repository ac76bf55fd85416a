// SPDX-License-Identifier: MIT
// A place in the tree of modules, objects, instances and groups.
#ifndef BROWSEPLACE_H
#define BROWSEPLACE_H

#include <QString>

/// MODULE/OBJECT/INSTANCE/GROUP…, decoded. The instance may be empty: MODULE/OBJECT/.
struct BrowsePlace
{
    enum Level { System, Module, Object, Instance };

    Level level = System;
    QString module;
    QString object;
    QString instance;
    QString group; ///< path of names joined by "/"; empty for the whole instance
};

/// @param text   as typed; a selector URL is fine too
/// @param error  receives one sentence; left alone on success
bool parseBrowsePlace(const QString &text, BrowsePlace &place, QString &error);

#endif
