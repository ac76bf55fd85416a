// SPDX-License-Identifier: MIT
// Reads where a description's values stand.
#ifndef BUFFERREADER_H
#define BUFFERREADER_H

#include "JsonText.h"
#include "ProcessDataDescription.h"

/// Reads the buffer that a published description names.
///
/// @param document  an opened object
/// @returns nothing, with an error that names key and value, when a rule is broken
std::optional<BufferDescription> readBuffer(const JsonNode &document, QString &error);

/// Whether all slots stand clear of one another; otherwise the error names two leaves.
bool slotsStandApart(const QVector<LeafDescription> &leaves, QString &error);

#endif
