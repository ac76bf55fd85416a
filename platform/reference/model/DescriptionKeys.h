// SPDX-License-Identifier: MIT
// Keys and limits of process-data descriptions.
#ifndef DESCRIPTIONKEYS_H
#define DESCRIPTIONKEYS_H

#include <QLatin1String>

namespace DescriptionKeys {

constexpr QLatin1String format("format");
constexpr QLatin1String formatVersion1("process-data-description/1");
constexpr QLatin1String module("module");
constexpr QLatin1String object("object");
constexpr QLatin1String instance("instance");
constexpr QLatin1String session("session");
constexpr QLatin1String buffer("buffer");
constexpr QLatin1String bufferGeneration("generation");
constexpr QLatin1String bufferSize("size");
constexpr QLatin1String bufferOwnerUid("ownerUid");
constexpr QLatin1String elements("elements");
constexpr QLatin1String name("name");
constexpr QLatin1String type("type");
constexpr QLatin1String capacity("capacity");
constexpr QLatin1String offset("offset");
constexpr QLatin1String readOnly("readOnly");
constexpr QLatin1String minimum("minimum");
constexpr QLatin1String maximum("maximum");
constexpr QLatin1String unit("unit");
constexpr QLatin1String description("description");
constexpr QLatin1String selectorType("selectorType");
constexpr QLatin1String simulate("simulate");

constexpr int maximumTextSize = 64 * 1024 * 1024; // bytes
constexpr int maximumLeaves = 1'000'000;
constexpr int maximumLevels = 64;
constexpr quint32 maximumCapacity = 16 * 1024 * 1024; // bytes of one string or bytes leaf
constexpr int maximumBufferNameLength = 255; // bytes, what file systems allow

} // namespace DescriptionKeys

#endif
