// SPDX-License-Identifier: MIT
// Removes buffers whose publishers are proved dead.
#ifndef DOCTORCLEAN_H
#define DOCTORCLEAN_H

#include "DoctorFinding.h"

#include <QStringList>

/// Looks at shared memory alone: neither bus nor services are needed, and the proof is the liveness
/// lock in the buffer itself.
///
/// @param only    modules to look at; empty: all
/// @param really  remove; otherwise only report
QVector<DoctorFinding> cleanLeftovers(const QStringList &only, bool really);

#endif
