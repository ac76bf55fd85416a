// SPDX-License-Identifier: MIT
// Times as people write them, in a place where clocks are put forward and back.
#include "TimeText.h"

#include <QDateTime>
#include <QtTest>

#include <ctime>

namespace {

constexpr qint64 nanosecond = 1;
constexpr qint64 second = 1'000'000'000;

// As UTC, so that no expectation depends on the place.
qint64 utc(const char *text, qint64 nanoseconds = 0)
{
    const QDateTime time = QDateTime::fromString(QString(text) + "Z", Qt::ISODate);
    return time.isValid() ? time.toSecsSinceEpoch() * second + nanoseconds : -1;
}

// Central European time by its rule, with or without a list of the world's zones.
const char *const europe = "CET-1CEST,M3.5.0/2,M10.5.0/3";
// Clocks are put forward at midnight.
const char *const atMidnight = "XXX-1YYY,M3.5.0/0,M10.5.0/1";

} // namespace

class TimeTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTimeIsRead_data();
    void aTimeIsRead();
    void whatIsNotOneTimeIsRefused_data();
    void whatIsNotOneTimeIsRefused();
    void aDayWithoutMidnightBeginsLater();
};

void TimeTextTest::aTimeIsRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("expected");
    // The present time is 2026-11-22 09:00 CET.
    QTest::newRow("now") << "now" << utc("2026-11-22T08:00:00");
    QTest::newRow("case does not matter") << "NOW" << utc("2026-11-22T08:00:00");
    QTest::newRow("today") << "today" << utc("2026-11-21T23:00:00");
    QTest::newRow("yesterday") << "yesterday" << utc("2026-11-20T23:00:00");
    QTest::newRow("yesterday at a time") << "yesterday 22:00" << utc("2026-11-21T21:00:00");
    QTest::newRow("today at a time") << "today 8:30" << utc("2026-11-22T07:30:00");
    QTest::newRow("a time of day is of today") << "22:00" << utc("2026-11-22T21:00:00");
    QTest::newRow("with seconds") << "00:00:01" << utc("2026-11-21T23:00:01");
    QTest::newRow("the last moment of a day")
        << "23:59:59.999999999" << utc("2026-11-22T22:59:59", 999999999);
    QTest::newRow("minutes ago") << "-15min" << utc("2026-11-22T07:45:00");
    QTest::newRow("a part of an hour ago") << "-1.5h" << utc("2026-11-22T06:30:00");
    QTest::newRow("a week ago") << "-7d" << utc("2026-11-15T08:00:00");
    QTest::newRow("milliseconds ago")
        << "-250ms" << utc("2026-11-22T08:00:00") - 250'000'000 * nanosecond;
    QTest::newRow("a day") << "2026-11-21" << utc("2026-11-20T23:00:00");
    QTest::newRow("with milliseconds")
        << "2026-11-21 22:00:05.250" << utc("2026-11-21T21:00:05", 250'000'000);
    QTest::newRow("one digit of a second is a tenth")
        << "2026-11-21 22:00:05.2" << utc("2026-11-21T21:00:05", 200'000'000);
    QTest::newRow("in summer") << "2026-07-01 12:00" << utc("2026-07-01T10:00:00");
    QTest::newRow("a T in between") << "2026-11-21T22:00" << utc("2026-11-21T21:00:00");
    QTest::newRow("in UTC") << "2026-11-21T22:00:05Z" << utc("2026-11-21T22:00:05");
    QTest::newRow("with an offset")
        << "2026-11-21T22:00:05.5+05:30" << utc("2026-11-21T16:30:05", 500'000'000);
    QTest::newRow("west of Greenwich") << "2026-11-21 22:00-03:00" << utc("2026-11-22T01:00:00");
    QTest::newRow("a blank before the offset")
        << "2026-11-21 22:00 +01:00" << utc("2026-11-21T21:00:00");
    QTest::newRow("just before the clocks go forward")
        << "2026-03-29 01:59:59" << utc("2026-03-29T00:59:59");
    QTest::newRow("just after") << "2026-03-29 03:00" << utc("2026-03-29T01:00:00");
    QTest::newRow("just before the hour that comes twice")
        << "2026-10-25 01:59:59" << utc("2026-10-24T23:59:59");
    QTest::newRow("just after it") << "2026-10-25 03:00" << utc("2026-10-25T02:00:00");
    QTest::newRow("its first time") << "2026-10-25 02:30+02:00" << utc("2026-10-25T00:30:00");
    QTest::newRow("its second time") << "2026-10-25 02:30+01:00" << utc("2026-10-25T01:30:00");
    QTest::newRow("a day with 25 hours") << "2026-10-25" << utc("2026-10-24T22:00:00");
    QTest::newRow("a leap day") << "2028-02-29" << utc("2028-02-28T23:00:00");
    QTest::newRow("the last year") << "2261-12-31" << utc("2261-12-30T23:00:00");
}

void TimeTextTest::aTimeIsRead()
{
    QFETCH(const QString, text);
    QFETCH(const qint64, expected);
    qputenv("TZ", europe);
    ::tzset();

    qint64 time = 0;
    QString error;
    QVERIFY2(timeFromText(text, utc("2026-11-22T08:00:00"), time, error), qPrintable(error));

    QCOMPARE(time, expected);
    QCOMPARE(error, QString());
}

void TimeTextTest::whatIsNotOneTimeIsRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const QString forms
        = " is not a time; expected for instance now, today, yesterday 22:00, 22:00, "
          "-15min, 2026-11-21, 2026-11-21 22:00:05.250 or 2026-11-21T22:00:05+01:00";
    const QString ago = " is not a time; expected for instance -500ms, -30s, -15min, -2h or -7d";
    QTest::newRow("nothing") << ""
                             << "\"\"" + forms;
    QTest::newRow("another word") << "noon"
                                  << "\"noon\"" + forms;
    QTest::newRow("an hour alone") << "22"
                                   << "\"22\"" + forms;
    QTest::newRow("the day first") << "21.11.2026"
                                   << "\"21.11.2026\"" + forms;
    QTest::newRow("more behind it") << "22:00 h"
                                    << "\"22:00 h\"" + forms;
    QTest::newRow("ten digits of a second") << "22:00:00.0000000001"
                                            << "\"22:00:00.0000000001\"" + forms;
    QTest::newRow("an offset without a date") << "22:00Z"
                                              << "\"22:00Z\"" + forms;
    QTest::newRow("a date with an offset") << "2026-11-21Z"
                                           << "\"2026-11-21Z\"" + forms;
    QTest::newRow("ago without a unit") << "-15"
                                        << "\"-15\"" + ago;
    QTest::newRow("ago of another unit") << "-15weeks"
                                         << "\"-15weeks\"" + ago;
    QTest::newRow("ago before ago") << "--15min"
                                    << "\"--15min\"" + ago;
    QTest::newRow("before 1970") << "-21000d"
                                 << "\"-21000d\"" + ago;
    QTest::newRow("no such day") << "2026-02-29"
                                 << "\"2026-02-29\" is not a time: there is no such day";
    QTest::newRow("no such hour") << "24:00"
                                  << "\"24:00\" is not a time: a day ends at 23:59:59.999999999";
    QTest::newRow("no such second")
        << "23:59:60"
        << "\"23:59:60\" is not a time: a day ends at 23:59:59.999999999";
    QTest::newRow("too early")
        << "1969-12-31 23:59"
        << "\"1969-12-31 23:59\" is out of reach; expected a time of the years 1970 to 2261";
    QTest::newRow("too late")
        << "2262-01-01"
        << "\"2262-01-01\" is out of reach; expected a time of the years 1970 to 2261";
    QTest::newRow("an hour that never was")
        << "2026-03-29 02:30"
        << "\"2026-03-29 02:30\" never was: the clocks were put forward over it; expected a time "
           "before or after that, or one with its offset from UTC";
    QTest::newRow("an hour that was twice")
        << "2026-10-25 02:30"
        << "\"2026-10-25 02:30\" was twice, as the clocks were put back; expected a date, a time "
           "and the offset from UTC, which was +02:00 first and then +01:00";
    QTest::newRow("its first moment")
        << "2026-10-25 02:00"
        << "\"2026-10-25 02:00\" was twice, as the clocks were put back; expected a date, a time "
           "and the offset from UTC, which was +02:00 first and then +01:00";
}

void TimeTextTest::whatIsNotOneTimeIsRefused()
{
    QFETCH(const QString, text);
    QFETCH(const QString, error);
    qputenv("TZ", europe);
    ::tzset();

    qint64 time = -7;
    QString problem;
    QVERIFY(!timeFromText(text, utc("2026-11-22T08:00:00"), time, problem));

    QCOMPARE(problem, error);
    QCOMPARE(time, qint64(-7));
}

void TimeTextTest::aDayWithoutMidnightBeginsLater()
{
    qputenv("TZ", atMidnight);
    ::tzset();
    qint64 time = 0;
    QString error;
    QVERIFY2(timeFromText("2026-03-29", utc("2026-11-22T08:00:00"), time, error),
             qPrintable(error));
    QCOMPARE(time, utc("2026-03-28T23:00:00")); // 01:00 there
    QVERIFY(!timeFromText("2026-03-29 00:00", utc("2026-11-22T08:00:00"), time, error));
}

QTEST_APPLESS_MAIN(TimeTextTest)
#include "TimeTextTest.moc"
