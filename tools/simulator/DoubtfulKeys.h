// SPDX-License-Identifier: MIT
// Keys of a description file that are unknown, but look like known ones.
#ifndef DOUBTFULKEYS_H
#define DOUBTFULKEYS_H

#include <QJsonObject>
#include <QStringList>

/// One sentence for each such key, with the place where it first occurs and the right spelling.
/// Keys that look like none are for whoever wants them.
QStringList doubtfulKeys(const QJsonObject &document);

#endif
