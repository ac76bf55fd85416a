// SPDX-License-Identifier: MIT
// Types of leaves and the bytes that hold their values.
#include "ValueType.h"

#include <algorithm>
#include <iterator>

namespace {

struct TypeRow
{
    QLatin1String name;
    ValueType type;
    quint32 size; // bytes; 0: as much as the leaf's capacity
};

const TypeRow types[] = {
    {QLatin1String("bool"), ValueType::Bool, 1},
    {QLatin1String("int8"), ValueType::Int8, 1},
    {QLatin1String("int16"), ValueType::Int16, 2},
    {QLatin1String("int32"), ValueType::Int32, 4},
    {QLatin1String("int64"), ValueType::Int64, 8},
    {QLatin1String("uint8"), ValueType::UInt8, 1},
    {QLatin1String("uint16"), ValueType::UInt16, 2},
    {QLatin1String("uint32"), ValueType::UInt32, 4},
    {QLatin1String("uint64"), ValueType::UInt64, 8},
    {QLatin1String("float32"), ValueType::Float32, 4},
    {QLatin1String("float64"), ValueType::Float64, 8},
    {QLatin1String("string"), ValueType::String, 0},
    {QLatin1String("bytes"), ValueType::Bytes, 0},
};

const TypeRow &rowOf(ValueType type)
{
    return types[static_cast<int>(type)];
}

template <typename Text> std::optional<ValueType> typeOf(const Text &name)
{
    const auto *const row = std::find_if(std::begin(types), std::end(types),
                                         [&name](const TypeRow &row) { return row.name == name; });
    if (row == std::end(types)) {
        return std::nullopt;
    }
    return row->type;
}

} // namespace

std::optional<ValueType> valueTypeFromName(const QString &name)
{
    return typeOf(name);
}

std::optional<ValueType> valueTypeFromName(QLatin1String name)
{
    return typeOf(name);
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
