// SPDX-License-Identifier: MIT
// Report entries of what selector doctor finds.
#ifndef DOCTORENTRIES_H
#define DOCTORENTRIES_H

#include "DoctorFinding.h"
#include "Report.h"

QVector<Column> doctorColumns();
Entry doctorEntry(const DoctorFinding &finding);

#endif
