// SPDX-License-Identifier: MIT
// Follows the selectors given as arguments: prints what each change signal names, until it is
// ended.
#include <SelectorHandlerProcessValue.h>

#include <QCoreApplication>
#include <QTextStream>

namespace {

void print(SelectorHandlerProcessValue &handler, const char *what, const QVector<int> &indices)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    for (const int i : indices) {
        const ProcessValue value = handler.getValue(i);
        out << what << ' ' << i << ": " << value.getValue().toString() << ", error type "
            << value.getErrorType() << ", properties " << handler.getPropertyAsJsonString(i)
            << '\n';
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv); // its event loop brings the announcements
    QVector<QString> urls = QCoreApplication::arguments().mid(1).toVector();
    if (urls.isEmpty()) {
        urls = {QStringLiteral("processdata://PumpStation/Pump/1/drive/setpoint"),
                QStringLiteral("processdata://PumpStation/Pump/1/drive/speed")};
    }

    // Without a list at construction it also hears when the system has started up.
    SelectorHandlerProcessValue handler(nullptr);
    QObject::connect(
        &handler,
        qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged),
        [&](const QVector<int> &indices) { print(handler, "description", indices); });
    QObject::connect(&handler,
                     qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged),
                     [&](const QVector<int> &indices) { print(handler, "property", indices); });
    handler.setSelectorUrls(urls);

    QVector<int> all;
    for (int i = 0; i < urls.size(); ++i) {
        all.append(i);
    }
    print(handler, "start", all);
    return QCoreApplication::exec();
}
