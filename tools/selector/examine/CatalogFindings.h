// SPDX-License-Identifier: MIT
// What the catalog says, as findings and with exact numbers.
#ifndef CATALOGFINDINGS_H
#define CATALOGFINDINGS_H

#include "Catalog.h"
#include "Finding.h"

#include <QHash>

/// None for an answer that is all right.
Finding findingOf(const CatalogAnswer &answer);

/// Why a pattern without a leaf has none.
Finding missOf(const CatalogMatch &match);

/// What a source's description says of its leaves, by their paths; whole numbers that JSON would
/// round are strings of digits.
QHash<QString, QJsonObject> exactProperties(const CatalogSource &source);

#endif
