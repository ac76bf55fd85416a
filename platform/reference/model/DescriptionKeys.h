// SPDX-License-Identifier: MIT
// Keys and limits of process-data descriptions.
#ifndef DESCRIPTIONKEYS_H
#define DESCRIPTIONKEYS_H

#include <QLatin1String>

namespace DescriptionKeys {

const QLatin1String format("format");
const QLatin1String formatVersion1("process-data-description/1");
const QLatin1String module("module");
const QLatin1String object("object");
const QLatin1String instance("instance");
const QLatin1String session("session");
const QLatin1String buffer("buffer");
const QLatin1String bufferGeneration("generation");
const QLatin1String bufferSize("size");
const QLatin1String bufferOwnerUid("ownerUid");
const QLatin1String elements("elements");
const QLatin1String name("name");
const QLatin1String type("type");
const QLatin1String capacity("capacity");
const QLatin1String offset("offset");
const QLatin1String readOnly("readOnly");
const QLatin1String minimum("minimum");
const QLatin1String maximum("maximum");
const QLatin1String unit("unit");
const QLatin1String description("description");
const QLatin1String selectorType("selectorType");
const QLatin1String simulate("simulate");

constexpr int maximumTextSize = 64 * 1024 * 1024; // bytes
constexpr int maximumLeaves = 1'000'000;
constexpr int maximumLevels = 64;
constexpr int maximumPathLength = 4096; // characters; no selector URL could name more
constexpr qint64 maximumPathText = Q_INT64_C(128) * 1024 * 1024; // characters of all paths together
constexpr quint32 maximumCapacity = 16 * 1024 * 1024; // bytes of one string or bytes leaf
constexpr int maximumBufferNameLength = 255; // bytes, what file systems allow

} // namespace DescriptionKeys

#endif
