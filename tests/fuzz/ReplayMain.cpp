// SPDX-License-Identifier: MIT
// Runs a fuzz target once for each file of its corpus.
#include "FuzzInput.h"

#include <QDir>
#include <QFile>

#include <vector>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS-DIRECTORY\n", argv[0]);
        return 2;
    }
    const QDir corpus(QString::fromLocal8Bit(argv[1]));
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()),
                         qPrintable(file.errorString()));
            return 1;
        }
        const QByteArray bytes = file.readAll();
        // A copy of exactly its size: the sanitizer sees a read past its end.
        const std::vector<uint8_t> input(bytes.cbegin(), bytes.cend());
        std::fprintf(stderr, "%s\n", qPrintable(name)); // the last one is the one that crashed
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%d inputs of %s\n", int(names.size()), argv[1]);
    return names.isEmpty() ? 1 : 0;
}
