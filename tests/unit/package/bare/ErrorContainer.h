// SPDX-License-Identifier: MIT
// An error that says nothing but its text.
#ifndef ERRORCONTAINER_H
#define ERRORCONTAINER_H

#include <QDebug>
#include <QMetaType>
#include <QString>

class ErrorContainer
{
public:
    ErrorContainer();
    virtual ~ErrorContainer();
    ErrorContainer(const ErrorContainer &other);
    ErrorContainer &operator=(const ErrorContainer &other);

private:
    qint32 number;
    QString text;
};

QDebug operator<<(QDebug debug, const ErrorContainer &error);

Q_DECLARE_METATYPE(ErrorContainer)

#endif
