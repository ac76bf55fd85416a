// SPDX-License-Identifier: MIT
// selector write: values from text.
#include "Command.h"
#include "Diagnosis.h"
#include "Entries.h"
#include "ExactJson.h"
#include "ExitCode.h"
#include "LeafType.h"
#include "MessageLog.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorList.h"

namespace {

Finding refused(const QString &text, const QString &problem)
{
    return {Finding::ValueRefused, QStringLiteral("\"%1\" %2").arg(text, problem)};
}

// Nothing about the value is wrong, so the memory is.
Finding refusedByMemory(Diagnosis &diagnosis, const QString &url)
{
    const QStringList warnings = MessageLog::takeWarnings();
    Finding finding = diagnosis.explainRefusal(url);
    if (finding.code != Finding::None) {
        return finding;
    }
    return {Finding::ValueRefused,
            warnings.isEmpty()
                ? QStringLiteral("the write was refused: no permission, the publisher "
                                 "is gone or another writer holds the lock")
                : warnings.constLast()};
}

Finding write(SelectorHandlerProcessValue &handler, int index, WriteResult &result,
              Diagnosis &diagnosis)
{
    const auto type = leafType(result.properties.value(QLatin1String("type")).toString());
    if (!type) {
        return refused(result.text,
                       QStringLiteral("cannot be converted: the leaf's type is unknown"));
    }
    if (result.properties.value(QLatin1String("readOnly")).toBool()) {
        return {Finding::ReadOnly, QStringLiteral("the leaf is read-only")};
    }
    QString problem;
    QVariant value;
    if (!valueFromText(*type, result.text, value, problem)
        || !checkLimits(*type, result.properties, value, problem)) {
        return refused(result.text, problem);
    }
    result.value = value;
    MessageLog::takeWarnings();
    return handler.setValue(ProcessValue(value), index) ? Finding()
                                                        : refusedByMemory(diagnosis, result.url);
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<SelectorInput> selectors;
    if (!collectSelectors(line, true, selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    SelectorHandlerProcessValue handler(urlsOf(selectors), nullptr);
    Diagnosis diagnosis;
    Report report{QStringLiteral("selector.write/1"), writeColumns(), {}};
    for (int i = 0; i < selectors.size(); ++i) {
        WriteResult result{selectors.at(i).url, {}, selectors.at(i).value, {}, {}};
        result.properties = exactObject(handler.getPropertyAsJsonString(i).toUtf8());
        result.finding = result.properties.isEmpty() ? diagnosis.explain(result.url) : Finding();
        if (result.properties.isEmpty() && result.finding.code == Finding::None) {
            result.finding = {Finding::NotReadable,
                              QStringLiteral("the leaf has only just appeared, try again")};
        }
        if (result.finding.code == Finding::None) {
            result.finding = write(handler, i, result, diagnosis);
        }
        report.entries.append(writeEntry(result));
    }
    return printReport(report, console);
}

} // namespace

Command writeCommand()
{
    return {
        QStringLiteral("write"),
        QStringLiteral("write values"),
        "Usage: selector write [OPTIONS] URL VALUE [URL VALUE]...\n"
        "Writes each value in the unit and type of its leaf.\n"
        "\n"
        "Values: true, false, 1, 0, on, off for bool; decimal or 0x numbers, NaN, Infinity,\n"
        "-Infinity; strings as they are; bytes as 0x and hexadecimal digits. A negative number\n"
        "needs no special care. Text is UTF-8.\n",
        {{"-e, --escapes",
          "take \\\\, \\n, \\r, \\t, \\xHH, \\uHHHH and \\UHHHHHHHH in values for\n"
          "the characters that they stand for",
          "Values are spelled as read -q prints them: \\n, \\r and \\t are line feed, carriage "
          "return and tab, HH the number of a character in hexadecimal digits."},
         {"-f, --file FILE",
          "also read pairs from FILE (- is standard input): one URL, blanks and\n"
          "the value (the rest of the line) a line; lines that begin with #\n"
          "are left out",
          "Empty lines are left out too. These pairs come after those on the command line.",
          Option::File},
         timeoutOption},
        "\nExample: selector write processdata://PumpStation/Pump/1/drive/setpoint 1200\n",
        {Arguments::UrlAndValue, Arguments::many},
        run};
}
