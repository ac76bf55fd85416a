// SPDX-License-Identifier: MIT
// Files that are named on the command line; - stands for standard input.
#include "InputFile.h"

#include <QFile>

#include <cstdio>

bool isStandardInput(const QString &name)
{
    return name == QLatin1String("-");
}

bool openInput(const QString &name, QFile &file, QString &error)
{
    file.setFileName(name);
    const bool opened = isStandardInput(name) ? file.open(stdin, QIODevice::ReadOnly)
                                              : file.open(QIODevice::ReadOnly);
    if (!opened) {
        error = QStringLiteral("%1: %2").arg(name, file.errorString());
    }
    return opened;
}
