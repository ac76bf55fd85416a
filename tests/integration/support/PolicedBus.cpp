// SPDX-License-Identifier: MIT
// A bus daemon under the installed policies, with users and groups of its own.
#include "PolicedBus.h"
#include "Files.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace {

const char users[] = "root:x:0:0::/:/bin/sh\n"
                     "pump:x:61001:61101::/:/bin/sh\n"
                     "operator:x:61002:61002::/:/bin/sh\n"
                     "stranger:x:61003:61003::/:/bin/sh\n"
                     "drive:x:61004:61104::/:/bin/sh\n"
                     "driver:x:61005:61005::/:/bin/sh\n";
const char groups[] = "root:x:0:\n"
                      "processdata-publisher:x:61100:pump,drive\n"
                      "processdata:x:61101:pump,operator\n"
                      "operator:x:61002:\n"
                      "stranger:x:61003:\n"
                      "drive:x:61104:driver\n"
                      "driver:x:61005:\n";

// What a system bus allows before any service's own policy.
const char configuration[]
    = R"(<busconfig><type>system</type><listen>%1</listen><auth>EXTERNAL</auth>
<policy context="default">
  <allow user="*"/>
  <deny own="*"/>
  <deny send_type="method_call"/>
  <allow send_type="signal"/>
  <allow send_requested_reply="true" send_type="method_return"/>
  <allow send_requested_reply="true" send_type="error"/>
  <allow receive_type="method_call"/>
  <allow receive_type="method_return"/>
  <allow receive_type="error"/>
  <allow receive_type="signal"/>
  <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
</policy>
<includedir>%2</includedir></busconfig>
)";

} // namespace

PolicedBus::PolicedBus()
{
    qputenv("PROCESSDATA_BUS", address().toUtf8());
}

PolicedBus::~PolicedBus()
{
    daemon.reset();
    qunsetenv("PROCESSDATA_BUS");
}

bool PolicedBus::start(const QMap<QString, QString> &modules)
{
    // Other users must reach the socket in it.
    QFile::setPermissions(directory.path(), QFile::Permissions(0x7755));
    const QString text = QString(configuration).arg(address(), directory.filePath("policies"));
    if (!writeFile(directory.filePath("passwd"), users)
        || !writeFile(directory.filePath("group"), groups) || !writePolicies(modules)
        || !writeFile(directory.filePath("bus.conf"), text.toUtf8())) {
        return false;
    }
    const QString script = "cd \"$0\" && mount --bind passwd /etc/passwd && mount --bind group "
                           "/etc/group && exec dbus-daemon --config-file=bus.conf --nofork "
                           "--nopidfile --print-address=1";
    daemon.reset(new ChildProcess("unshare", {"--mount", "sh", "-c", script, directory.path()}));
    return daemon->start() && !daemon->waitForLineWith("unix:").isEmpty();
}

QString PolicedBus::address() const
{
    return "unix:path=" + directory.filePath("bus");
}

// Copies of the installed ones; with modules, as docs/security.md says where they must not stand in
// for one another.
bool PolicedBus::writePolicies(const QMap<QString, QString> &modules) const
{
    const QRegularExpression forAll(
        "<policy group=\"processdata-publisher\">\\s*<allow own_prefix=[^>]*>\\s*</policy>");
    QString rules;
    for (auto rule = modules.cbegin(); rule != modules.cend(); ++rule) {
        rules += QString("<policy user=\"%1\"><allow own=\"com.orvalis.ProcessData.%2\"/></policy>")
                     .arg(rule.key(), rule.value());
    }
    bool done = QDir(directory.path()).mkdir("policies");
    bool narrowed = modules.isEmpty();
    const QDir installed(POLICY_DIRECTORY);
    for (const QString &name : installed.entryList({"*.conf"})) {
        QString text = QString::fromUtf8(contentOf(installed.filePath(name)));
        if (!modules.isEmpty() && text.contains(forAll)) {
            text.replace(forAll, rules);
            narrowed = true;
        }
        done = done && writeFile(directory.filePath("policies/" + name), text.toUtf8());
    }
    return done && narrowed;
}
