// SPDX-License-Identifier: MIT
// Gets at the values in a description's text.
#ifndef DESCRIPTIONTEXT_H
#define DESCRIPTIONTEXT_H

#include "JsonText.h"

#include <QByteArray>
#include <QJsonObject>

/// Goes over the text of a description.
///
/// @returns null, with an error, when it is too long or no JSON object
JsonTextPointer scanDescription(const QByteArray &json, QString &error);

/// The same for a document that is already parsed.
JsonTextPointer scanDescription(const QJsonObject &document, QString &error);

#endif
