// SPDX-License-Identifier: MIT
// Puts the lists of options into the manual pages, while they are built.
//
// usage: selector-pages TARGET-DIRECTORY PAGE…
#include "Help.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>

namespace {

bool makePage(const QString &source, const QString &target)
{
    QFile in(source);
    QFile out(target);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QString name = QFileInfo(source).completeBaseName().section(QLatin1Char('-'), 1);
    const QByteArray page = manualPage(QString::fromUtf8(in.readAll()), findCommand(name)).toUtf8();
    return out.write(page) == page.size() && out.flush();
}

} // namespace

int main(int argc, char *argv[])
{
    for (int i = 2; i < argc; ++i) {
        const QString source = QFile::decodeName(argv[i]);
        const QString target
            = QDir(QFile::decodeName(argv[1])).filePath(QFileInfo(source).fileName());
        if (!makePage(source, target)) {
            static_cast<void>(std::fprintf(stderr, "selector-pages: %s cannot be made of %s\n",
                                           qPrintable(target), argv[i]));
            return 1;
        }
    }
    return 0;
}
