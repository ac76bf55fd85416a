// SPDX-License-Identifier: MIT
// Bodies for each form that Sample.h can take.
#include "Sample.h"

class SampleInside
{
public:
    int used = 0;
#ifdef INSIDE_CHANGED
    double more = 0;
#endif
};

Sample::Sample()
    : inside(new SampleInside)
{
}

Sample::~Sample()
{
    delete inside;
}

Sample::State Sample::state() const
{
    return Running;
}

#ifdef RESULT_CHANGED
QList<int> Sample::indices() const
#else
QVector<int> Sample::indices() const
#endif
{
    return {};
}

#ifdef PARAMETER_CHANGED
void Sample::rename(const QByteArray &)
{
}
#else
void Sample::rename(const QString &)
{
}
#endif

#ifdef VIRTUAL_INSERTED
void Sample::inserted()
{
}
#endif
#ifdef VIRTUAL_APPENDED
void Sample::appended()
{
}
#endif
#ifndef FUNCTION_REMOVED
void Sample::clear()
{
}
#endif
#ifdef FUNCTION_ADDED
void Sample::added()
{
}
#endif
