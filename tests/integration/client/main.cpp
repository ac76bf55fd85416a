// SPDX-License-Identifier: MIT
// A client that reads its only selector and tries to write it, as another user.
//
// usage: integration-client UID:GID[,GID…] URL
//
// Prints error type, value, and whether 44 could be written.
#include "OtherUser.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 3 || !becomeUser(argv[1])) {
        std::perror(argv[1]);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    SelectorHandlerProcessValue handler({QString(argv[2])}, nullptr);
    const ProcessValue value = handler.getValue(0);
    const bool written = handler.setValue(ProcessValue(QVariant(44)), 0);
    std::printf("%d %s %s\n", int(value.getErrorType()), qPrintable(value.getValue().toString()),
                written ? "written" : "refused");
    return 0;
}
