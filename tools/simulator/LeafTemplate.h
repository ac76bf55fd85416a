// SPDX-License-Identifier: MIT
// The leaves of a description file as the simulator needs them.
#ifndef LEAFTEMPLATE_H
#define LEAFTEMPLATE_H

#include "LeafType.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

/// One leaf of a description file.
struct LeafTemplate
{
    QString path; ///< names from the top joined by "/"
    LeafType type;
    QJsonObject properties; ///< without "simulate"
    QJsonObject simulate; ///< empty when the file says nothing of the leaf's movement
    bool simulated = false; ///< whether the leaf has the key "simulate"
};

/// Collects the leaves in document order. Skips what is malformed: the publisher checks the
/// document as a whole and names what is wrong.
QVector<LeafTemplate> leafTemplates(const QJsonObject &document);

/// The document without the simulator's own keys: what clients get to see.
QJsonObject withoutSimulation(const QJsonObject &document);

/// Whether two documents differ in properties at most: the same leaves in the same order with the
/// same types, capacities and access.
bool sameLayout(const QJsonObject &left, const QJsonObject &right);

#endif
