// SPDX-License-Identifier: MIT
// Reads one leaf of a description.
#ifndef LEAFREADER_H
#define LEAFREADER_H

#include "ProcessDataDescription.h"

/// Reads a leaf that is known to have a name and a type key.
///
/// @param bufferSize  bytes that the leaf's slot must lie in; used in a published description
/// @returns the leaf; nothing, with an error that names the path, when a rule is broken
std::optional<LeafDescription> readLeaf(const QJsonObject &element, const QString &path,
                                        DescriptionForm form, quint64 bufferSize, QString &error);

#endif
