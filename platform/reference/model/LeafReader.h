// SPDX-License-Identifier: MIT
// Reads one leaf of a description.
#ifndef LEAFREADER_H
#define LEAFREADER_H

#include "JsonText.h"
#include "ProcessDataDescription.h"

/// Reads a leaf that is known to have a name and a type key.
///
/// @param element     an opened object of the text
/// @param bufferSize  bytes that the leaf's slot must lie in; used in a published description
/// @param leaf        receives everything but the properties
/// @returns false, with an error that names the path, when a rule is broken
bool readLeaf(const JsonNode &element, const QString &path, DescriptionForm form,
              quint64 bufferSize, LeafDescription &leaf, QString &error);

#endif
