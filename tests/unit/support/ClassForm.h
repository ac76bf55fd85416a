// SPDX-License-Identifier: MIT
// Looks at the binary form of classes: places of members, numbers of virtual operations.
#ifndef CLASSFORM_H
#define CLASSFORM_H

#include <QtGlobal>

#include <cstddef>
#include <cstring>

/// Opens one private member for a test: an explicit instantiation may name it. Tag declares
/// `friend auto memberOf(Tag);`, then `template struct Opens<Tag, &Class::member>;`.
template <typename Tag, auto Member> struct Opens
{
    friend auto memberOf(Tag) { return Member; }
};

/// Distance of a data member from the start of its class.
template <typename Class, typename Type> std::ptrdiff_t offsetOf(Type Class::*member)
{
    std::ptrdiff_t offset = 0;
    static_assert(sizeof(offset) == sizeof(member), "a data member pointer is an offset");
    std::memcpy(&offset, &member, sizeof(offset));
    return offset;
}

/// Slot of a virtual operation in the table of its class, from 0; -1 when it is not virtual.
template <typename Operation> int virtualSlotOf(Operation operation)
{
    struct
    {
        std::ptrdiff_t function;
        std::ptrdiff_t adjustment;
    } form;
    static_assert(sizeof(form) == sizeof(operation), "as the C++ ABI of all our targets has it");
    std::memcpy(&form, &operation, sizeof(form));
#if defined(Q_PROCESSOR_ARM)
    const bool isVirtual = (form.adjustment & 1) != 0;
    const std::ptrdiff_t offset = form.function;
#else
    const bool isVirtual = (form.function & 1) != 0;
    const std::ptrdiff_t offset = form.function - 1;
#endif
    return isVirtual ? static_cast<int>(offset / static_cast<std::ptrdiff_t>(sizeof(void *))) : -1;
}

#endif
