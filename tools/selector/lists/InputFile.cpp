// SPDX-License-Identifier: MIT
// Files that are named on the command line; - stands for standard input.
#include "InputFile.h"

#include "Utf8Text.h"

#include <QFile>

#include <cstdio>

namespace {

constexpr int mostBytes = 64 * 1024 * 1024;

// Nobody knows the size of a pipe, so only a read that gets nothing is its end.
QByteArray readToEnd(QFile &file)
{
    constexpr int piece = 64 * 1024;
    QByteArray content;
    for (QByteArray more = file.read(piece); !more.isEmpty() && content.size() <= mostBytes;
         more = file.read(piece)) {
        content += more;
    }
    return content;
}

} // namespace

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

bool readTextFile(const QString &name, QString &text, QString &error)
{
    QFile file;
    if (!openInput(name, file, error)) {
        return false;
    }
    const QByteArray content = readToEnd(file);
    const QString shownName = isStandardInput(name) ? QStringLiteral("standard input") : name;
    if (file.error() != QFileDevice::NoError) {
        error = QStringLiteral("%1: %2").arg(shownName, file.errorString());
        return false;
    }
    if (content.size() > mostBytes) {
        error = QStringLiteral("%1: longer than 64 MiB").arg(shownName);
        return false;
    }
    QString problem;
    const auto decoded = fileTextFromUtf8(content, problem);
    if (!decoded) {
        error = QStringLiteral("%1: %2").arg(shownName, problem);
        return false;
    }
    text = *decoded;
    return true;
}

QString withoutBlanks(const QString &line)
{
    static const QString blanks(QStringLiteral(" \t\r\v\f"));
    int begin = 0;
    int end = line.size();
    while (begin < end && blanks.contains(line.at(begin))) {
        ++begin;
    }
    while (end > begin && blanks.contains(line.at(end - 1))) {
        --end;
    }
    return line.mid(begin, end - begin);
}
