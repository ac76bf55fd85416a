// SPDX-License-Identifier: MIT
// Makes views.
#ifndef WATCHVIEWS_H
#define WATCHVIEWS_H

#include "Watcher.h"

/// Null for lines, which need none.
std::unique_ptr<WatchView> makeView(WatchOptions::View view, const QVector<WatchTarget> &targets,
                                    const Console &console);

#endif
