// SPDX-License-Identifier: MIT
// Reads one leaf of a description.
#include "LeafReader.h"

#include "DescriptionKeys.h"
#include "JsonReading.h"
#include "SlotLayout.h"
#include "ValueConversion.h"

#include <limits>

namespace Keys = DescriptionKeys;

namespace {

bool hasRange(ValueType type)
{
    return type != ValueType::Bool && type != ValueType::String && type != ValueType::Bytes;
}

bool readType(const JsonNode &element, const JsonPlace &place, LeafDescription &leaf,
              QString &error)
{
    const JsonNode name = element.value(Keys::type);
    if (!checkText(name, Keys::type, false, place, error)) {
        return false;
    }
    const auto type
        = name.isPlain() ? valueTypeFromName(name.bytes()) : valueTypeFromName(name.toText());
    if (!type) {
        error = QStringLiteral("%1: unknown type %2").arg(place.text(), printable(name.toText()));
        return false;
    }
    leaf.type = *type;
    if (*type != ValueType::String && *type != ValueType::Bytes) {
        return true;
    }
    const auto capacity
        = readWholeNumber(element, Keys::capacity, 1, Keys::maximumCapacity, place, error);
    leaf.capacity = static_cast<quint32>(capacity.value_or(0));
    return capacity.has_value();
}

bool isReal(ValueType type)
{
    return type == ValueType::Float32 || type == ValueType::Float64;
}

// Many writers of JSON know doubles only: the highest number of a 64-bit type arrives one too large,
// or more. Nothing else could be meant.
QVariant unroundedMaximum(ValueType type, const QVariant &number)
{
    constexpr double past63Bits = 9223372036854775808.0;
    constexpr double past64Bits = 18446744073709551616.0;
    if (type == ValueType::Int64 && number.userType() != QMetaType::LongLong
        && number.toDouble() == past63Bits) {
        return QVariant(std::numeric_limits<qlonglong>::max());
    }
    if (type == ValueType::UInt64 && number.userType() == QMetaType::Double
        && number.toDouble() == past64Bits) {
        return QVariant(std::numeric_limits<qulonglong>::max());
    }
    return number;
}

// A limit of a real number may be the nearest double, as JSON has it everywhere.
QVariant limitOf(ValueType type, const JsonNode &value)
{
    const QVariant number = numberOf(value);
    if (isReal(type)) {
        return number.userType() == QMetaType::ULongLong ? QVariant(number.toDouble()) : number;
    }
    return unroundedMaximum(type, number);
}

bool readLimit(const JsonNode &element, const JsonKey &key, const JsonPlace &place,
               const LeafDescription &leaf, QVariant &limit, QString &error)
{
    const JsonNode value = element.value(key);
    if (value.isUndefined()) {
        return true;
    }
    if (!hasRange(leaf.type)) {
        error = QStringLiteral("%1: a leaf of type %2 has no \"%3\"")
                    .arg(place.text(), valueTypeName(leaf.type), key.name);
        return false;
    }
    if (value.kind() != JsonKind::Number) {
        error = QStringLiteral("%1: \"%2\" must be a number, but is %3")
                    .arg(place.text(), key.name, jsonTypeName(value.kind()));
        return false;
    }
    constexpr int exactDigits = 15; // of a double
    if (leaf.type == ValueType::Float64 && value.bytes().size() <= exactDigits) {
        if (const auto whole = signedWholeNumber(value)) { // what is read most, without a detour
            limit = QVariant(double(*whole));
            return true;
        }
    }
    const QVariant number = limitOf(leaf.type, value);
    QString reason;
    const auto converted = convertToType(leaf.type, number, reason);
    if (!converted) {
        error
            = QStringLiteral("%1: \"%2\" is %3, which does not convert to %4: it %5")
                  .arg(place.text(), key.name, printable(number), valueTypeName(leaf.type), reason);
        return false;
    }
    limit = *converted;
    return true;
}

bool readRange(const JsonNode &element, const JsonPlace &place, LeafDescription &leaf,
               QString &error)
{
    if (!readLimit(element, Keys::minimum, place, leaf, leaf.minimum, error)
        || !readLimit(element, Keys::maximum, place, leaf, leaf.maximum, error)) {
        return false;
    }
    if (leaf.minimum.isValid() && leaf.maximum.isValid()
        && isLess(leaf.type, leaf.maximum, leaf.minimum)) {
        error = QStringLiteral("%1: minimum %2 is above maximum %3")
                    .arg(place.text(), printable(leaf.minimum), printable(leaf.maximum));
        return false;
    }
    return true;
}

bool readOffset(const JsonNode &element, const JsonPlace &place, quint64 bufferSize,
                LeafDescription &leaf, QString &error)
{
    const auto offset = readWholeNumber(element, Keys::offset, slotLayoutHeaderSize,
                                        std::numeric_limits<qint64>::max(), place, error);
    if (!offset) {
        return false;
    }
    if (*offset % slotAlignment != 0) {
        error = QStringLiteral("%1: offset %2 is not a multiple of %3")
                    .arg(place.text())
                    .arg(*offset)
                    .arg(slotAlignment);
        return false;
    }
    const quint64 size = slotSize(leaf.type, leaf.capacity);
    if (*offset > bufferSize || size > bufferSize - *offset) {
        error = QStringLiteral(
                    "%1: a slot of %2 bytes at offset %3 lies outside the buffer of %4 bytes")
                    .arg(place.text())
                    .arg(size)
                    .arg(*offset)
                    .arg(bufferSize);
        return false;
    }
    leaf.offset = *offset;
    return true;
}

bool readReadOnly(const JsonNode &element, const JsonPlace &place, LeafDescription &leaf,
                  QString &error)
{
    const JsonNode value = element.value(Keys::readOnly);
    if (!value.isUndefined() && value.kind() != JsonKind::Bool) {
        error = QStringLiteral("%1: \"%2\" must be a boolean, but is %3")
                    .arg(place.text(), Keys::readOnly.name, jsonTypeName(value.kind()));
        return false;
    }
    leaf.readOnly = value.isTrue();
    return true;
}

bool checkOtherKeys(const JsonNode &element, const JsonPlace &place, QString &error)
{
    for (const JsonKey &key : {Keys::unit, Keys::description, Keys::selectorType}) {
        if (!checkText(element.value(key), key, true, place, error)) {
            return false;
        }
    }
    const JsonNode simulate = element.value(Keys::simulate);
    if (!simulate.isUndefined() && simulate.kind() != JsonKind::Object) {
        error = QStringLiteral("%1: \"%2\" must be an object, but is %3")
                    .arg(place.text(), Keys::simulate.name, jsonTypeName(simulate.kind()));
        return false;
    }
    return true;
}

} // namespace

bool readLeaf(const JsonNode &element, const QString &path, DescriptionForm form,
              quint64 bufferSize, LeafDescription &leaf, QString &error)
{
    const JsonPlace place(QLatin1String("leaf \""), path, QLatin1String("\""));
    leaf.path = path;
    if (!readType(element, place, leaf, error) || !readRange(element, place, leaf, error)
        || !readReadOnly(element, place, leaf, error) || !checkOtherKeys(element, place, error)) {
        return false;
    }
    if (form == DescriptionForm::Published) {
        return readOffset(element, place, bufferSize, leaf, error);
    }
    if (element.contains(Keys::offset)) {
        error = QStringLiteral("%1: \"%2\" is the publisher's to add")
                    .arg(place.text(), Keys::offset.name);
        return false;
    }
    return true;
}
