// SPDX-License-Identifier: MIT
// Descriptions, selectors and index lists as the integration tests write them.
#ifndef DESCRIPTIONS_H
#define DESCRIPTIONS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <QString>
#include <QStringList>
#include <QVector>

/// A module name that no other running test uses; without "_", which selectors do not allow there.
QString uniqueModule();

/// Removes what killed publishers of the module left in shared memory.
void removeLeftBuffers(const QString &module);

/// Names of the files in shared memory whose name contains the text: buffers, each standing for the
/// record of its publisher's life beside it as well, and whatever else there is.
QStringList buffersOf(const QString &text);

QJsonObject leaf(const QString &name, const QString &type, const QJsonObject &more = {});
QJsonObject description(const QJsonArray &elements);
QString selectorUrl(const QString &module, const QString &path,
                    const QString &object = "Controller", const QString &instance = "1");

using IndexLists = QVector<QVector<int>>;
IndexLists indexLists(const QSignalSpy &spy);

#endif
