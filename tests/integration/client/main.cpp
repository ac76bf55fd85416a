// SPDX-License-Identifier: MIT
// A client that reads its only selector and tries to write it, as another user or starved.
//
// usage: integration-client UID:GID[,GID…]|--starved URL
//
// Prints error type, value, and whether 44 could be written. Starved: no file can be opened.
#include "OtherUser.h"
#include "SelectorHandlerProcessValue.h"
#include "Shortage.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>

int main(int argc, char *argv[])
{
    const bool starved = argc == 3 && QString(argv[1]) == "--starved";
    if (argc != 3 || (!starved && !becomeUser(argv[1]))) {
        std::perror("integration-client");
        return 2;
    }
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<DescriptorShortage> shortage(starved ? new DescriptorShortage : nullptr);
    SelectorHandlerProcessValue handler({QString(argv[2])}, nullptr);
    const ProcessValue value = handler.getValue(0);
    const bool written = handler.setValue(ProcessValue(QVariant(44)), 0);
    std::printf("%d %s %s\n", int(value.getErrorType()), qPrintable(value.getValue().toString()),
                written ? "written" : "refused");
    return 0;
}
