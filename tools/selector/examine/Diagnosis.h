// SPDX-License-Identifier: MIT
// Finds out why a selector could not be read.
#ifndef DIAGNOSIS_H
#define DIAGNOSIS_H

#include "BusQueryResult.h"
#include "Finding.h"

#include <QMap>
#include <QSharedPointer>
#include <QString>

class SelectorSharedMemoryHandler;
class SelectorUrlHandler;

/// Walks the way of a selector again, step by step, until one fails. Asks each source once.
///
/// Threads: one; blocks for D-Bus calls.
class Diagnosis
{
public:
    /// @returns the first step that fails; None when the URL itself is all right and its leaf is
    ///          there and attached
    Finding explain(const QString &url);

    /// Why a leaf that is there refused a value that fits it.
    Finding explainRefusal(const QString &url);

    /// What a question to a service that failed means.
    static Finding explainQuery(BusQueryResult result, const QString &error);

    /// What can be told from the URL's text alone.
    static Finding explainText(const SelectorUrlHandler &url);

    /// What is wrong with a source, whatever leaf of it is wanted.
    ///
    /// @param handler  receives the source, attached or not
    static Finding explainSource(const QString &module, const QString &object,
                                 const QString &instance,
                                 QSharedPointer<SelectorSharedMemoryHandler> &handler);

private:
    struct Source
    {
        QSharedPointer<SelectorSharedMemoryHandler> handler;
        Finding finding;
    };

    QMap<QString, Source> sources;
};

#endif
