// SPDX-License-Identifier: MIT
// Keys and limits of process-data descriptions.
#ifndef DESCRIPTIONKEYS_H
#define DESCRIPTIONKEYS_H

#include "JsonKey.h"

namespace DescriptionKeys {

const QLatin1String formatVersion1("process-data-description/1");

constexpr JsonKey format{"format", 0};
constexpr JsonKey module{"module", 1};
constexpr JsonKey object{"object", 2};
constexpr JsonKey instance{"instance", 3};
constexpr JsonKey session{"session", 4};
constexpr JsonKey buffer{"buffer", 5};
constexpr JsonKey bufferGeneration{"generation", 6};
constexpr JsonKey bufferSize{"size", 7};
constexpr JsonKey bufferOwnerUid{"ownerUid", 8};
constexpr JsonKey elements{"elements", 9};
constexpr JsonKey name{"name", 10};
constexpr JsonKey type{"type", 11};
constexpr JsonKey capacity{"capacity", 12};
constexpr JsonKey offset{"offset", 13};
constexpr JsonKey readOnly{"readOnly", 14};
constexpr JsonKey minimum{"minimum", 15};
constexpr JsonKey maximum{"maximum", 16};
constexpr JsonKey unit{"unit", 17};
constexpr JsonKey description{"description", 18};
constexpr JsonKey selectorType{"selectorType", 19};
constexpr JsonKey simulate{"simulate", 20};
constexpr JsonKey bufferRevision{"revision", 21};

/// Each at the position that is its number.
constexpr JsonKey all[]
    = {format,           module,       object,         instance,      session, buffer,
       bufferGeneration, bufferSize,   bufferOwnerUid, elements,      name,    type,
       capacity,         offset,       readOnly,       minimum,       maximum, unit,
       description,      selectorType, simulate,       bufferRevision};

constexpr bool areNumbered()
{
    quint32 number = 0;
    for (const JsonKey &key : all) {
        if (key.number != number) {
            return false;
        }
        ++number;
    }
    return true;
}
static_assert(areNumbered(), "a key is found by its number");

constexpr int maximumTextSize = 64 * 1024 * 1024; // bytes
constexpr int maximumLeaves = 1'000'000;
constexpr int maximumLevels = 64;
constexpr int maximumPathLength = 4096; // characters; no selector URL could name more
constexpr qint64 maximumPathText = Q_INT64_C(128) * 1024 * 1024; // characters of all paths together
constexpr quint32 maximumCapacity = 16 * 1024 * 1024; // bytes of one string or bytes leaf
constexpr int maximumBufferNameLength = 255; // bytes, what file systems allow

} // namespace DescriptionKeys

#endif
