// SPDX-License-Identifier: MIT
// Reads one description file for the simulator.
#ifndef DESCRIPTIONFILE_H
#define DESCRIPTIONFILE_H

#include "Motion.h"
#include "SourceName.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

/// A leaf together with its movement.
struct MovingLeaf
{
    LeafTemplate leaf;
    std::unique_ptr<Motion> motion;
};

/// What a description file says.
struct DescriptionFile
{
    SourceName source;
    QJsonObject description; ///< as it is published: without the simulation keys
    QStringList doubts; ///< a sentence for each unknown key that looks like a known one
    std::vector<MovingLeaf> movingLeaves; ///< in document order; leaves without "simulate" stay out
};

/// Reads a whole file.
///
/// @param error  receives one sentence that names the file; left alone on success
bool readFile(const QString &fileName, QByteArray &content, QString &error);

/// Takes a file's content apart.
///
/// @param error  receives one sentence that names file, leaf path and key; left alone on success
/// @returns whether all that the simulator needs is there and right; the publisher checks the rest
bool parseDescriptionFile(const QString &fileName, const QByteArray &content,
                          DescriptionFile &result, QString &error);

#endif
