// SPDX-License-Identifier: MIT
// Types of leaves and the bytes that hold their values.
#include "ValueType.h"

#include <algorithm>
#include <iterator>

namespace {

struct TypeRow
{
    ValueType type;
    QLatin1String name;
    quint32 size; // bytes; 0: as much as the leaf's capacity
};

const TypeRow types[] = {
    {ValueType::Bool, QLatin1String("bool"), 1},
    {ValueType::Int8, QLatin1String("int8"), 1},
    {ValueType::Int16, QLatin1String("int16"), 2},
    {ValueType::Int32, QLatin1String("int32"), 4},
    {ValueType::Int64, QLatin1String("int64"), 8},
    {ValueType::UInt8, QLatin1String("uint8"), 1},
    {ValueType::UInt16, QLatin1String("uint16"), 2},
    {ValueType::UInt32, QLatin1String("uint32"), 4},
    {ValueType::UInt64, QLatin1String("uint64"), 8},
    {ValueType::Float32, QLatin1String("float32"), 4},
    {ValueType::Float64, QLatin1String("float64"), 8},
    {ValueType::String, QLatin1String("string"), 0},
    {ValueType::Bytes, QLatin1String("bytes"), 0},
};

const TypeRow &rowOf(ValueType type)
{
    return types[static_cast<int>(type)];
}

} // namespace

std::optional<ValueType> valueTypeFromName(const QString &name)
{
    const auto *const row = std::find_if(std::begin(types), std::end(types),
                                         [&name](const TypeRow &row) { return row.name == name; });
    if (row == std::end(types)) {
        return std::nullopt;
    }
    return row->type;
}

QString valueTypeName(ValueType type)
{
    return rowOf(type).name;
}

quint32 payloadSize(ValueType type, quint32 capacity)
{
    const quint32 size = rowOf(type).size;
    return size != 0 ? size : capacity;
}
