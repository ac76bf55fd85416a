// SPDX-License-Identifier: MIT
// A publisher that a test drives through standard input, until that ends.
//
// usage: integration-publisher [--as UID:GID[,GID…]]
#include "OtherUser.h"
#include "PublisherCommands.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <unistd.h>

int main(int argc, char *argv[])
{
    if (argc == 3 && !becomeUser(argv[2])) {
        std::perror(argv[2]);
        return 1;
    }
    const QCoreApplication application(argc, argv);
    PublisherCommands commands;
    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        QByteArray chunk(65536, Qt::Uninitialized);
        const ssize_t count = ::read(STDIN_FILENO, chunk.data(), static_cast<size_t>(chunk.size()));
        if (count <= 0) {
            QCoreApplication::quit();
            return;
        }
        pending += chunk.left(static_cast<int>(count));
        for (int end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            const QByteArray line = pending.left(end);
            pending.remove(0, end + 1);
            printLine(commands.run(line));
        }
    });
    printLine("ready");
    return QCoreApplication::exec();
}
