// SPDX-License-Identifier: MIT
// What a description says of one leaf.
#ifndef LEAFDESCRIPTION_H
#define LEAFDESCRIPTION_H

#include "LeafProperties.h"
#include "ValueType.h"

#include <QString>
#include <QVariant>

/// One leaf of a parsed description.
struct LeafDescription
{
    QString path; ///< names from the top joined by "/"
    ValueType type = ValueType::Float64;
    quint32 capacity = 0; ///< bytes, of string and bytes leaves; 0 for the others
    quint64 offset
        = 0; ///< of the leaf's slot in the buffer, bytes; 0 before the buffer is laid out
    bool readOnly = false;
    QVariant minimum; ///< in the leaf's unit, of the leaf's type; invalid when there is none
    QVariant maximum;
    LeafProperties properties; ///< every key of the leaf as described
};
Q_DECLARE_TYPEINFO(LeafDescription, Q_MOVABLE_TYPE);

#endif
