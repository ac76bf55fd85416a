// SPDX-License-Identifier: MIT
// Names as people read them.
#ifndef SCREENNAMES_H
#define SCREENNAMES_H

#include <QStringList>

/// URLs or places taken apart into what all have in common and what tells them apart. All is
/// decoded: "%20" is a blank.
struct ScreenNames
{
    /// Ends in "/"; empty when they have nothing in common. The last part of a name is never in it.
    QString common;
    QStringList rests; ///< in the order of the names

    /// @param names  an empty one stays empty. Where some are URLs, what is not one stays as it is.
    static ScreenNames of(const QStringList &names);
};

#endif
