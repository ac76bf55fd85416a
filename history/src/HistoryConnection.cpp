// SPDX-License-Identifier: MIT
// One connection to a history's database.
#include "HistoryConnection.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlRecord>
#include <QUrlQuery>

#include <atomic>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace {

QString nextName()
{
    static std::atomic<quint64> number{0};
    return QStringLiteral("process-data-history-%1").arg(number++);
}

// SQLite's result codes, of which the driver hands on number and text.
QString meaning(int code)
{
    switch (code & 0xff) {
    case 5: // SQLITE_BUSY
        return QStringLiteral("is locked by another program; end it, or wait");
    case 8: // SQLITE_READONLY
        return QStringLiteral("cannot be written");
    case 10: // SQLITE_IOERR
        return QStringLiteral("cannot be read or written; check disk and file system");
    case 11: // SQLITE_CORRUPT
        return QStringLiteral("is damaged, or only half of it is there; move it away and record "
                              "anew, or rescue what is left with: sqlite3 FILE .recover");
    case 13: // SQLITE_FULL
        return QStringLiteral("has no space left on its disk; make space, or set max_size");
    case 14: // SQLITE_CANTOPEN
        return QStringLiteral("cannot be opened; check that file and folder may be written");
    case 26: // SQLITE_NOTADB
        return QStringLiteral("is not a database; name another file");
    default:
        return {};
    }
}

} // namespace

HistoryConnection::HistoryConnection(HistoryPlace place, Purpose purpose)
    : where(std::move(place))
    , purpose(purpose)
    , name(nextName())
{
}

HistoryConnection::~HistoryConnection()
{
    QSqlDatabase::database(name, false).close();
    QSqlDatabase::removeDatabase(name);
    if (lockFile >= 0) {
        ::close(lockFile);
    }
}

std::unique_ptr<HistoryConnection> HistoryConnection::open(const HistoryPlace &place,
                                                           Purpose purpose, QString *error)
{
    std::unique_ptr<HistoryConnection> connection(new HistoryConnection(place, purpose));
    const QString driver = place.isFile() ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL");
    QString problem;
    if (!QSqlDatabase::isDriverAvailable(driver)) {
        problem = QStringLiteral("needs Qt's driver %1; install it (Debian: %2)")
                      .arg(driver,
                           place.isFile() ? QStringLiteral("libqt5sql5-sqlite")
                                          : QStringLiteral("libqt5sql5-psql"));
    } else {
        QSqlDatabase::addDatabase(driver, connection->name);
        problem = place.isFile() ? connection->openFile() : connection->openServer();
    }
    if (problem.isEmpty()) {
        return connection;
    }
    *error = place.shown() + QLatin1Char(' ') + problem;
    return nullptr;
}

QString HistoryConnection::openFile()
{
    const bool writing = purpose == Purpose::Writing;
    const QString file = where.file;
    QString problem = HistoryFile::problem(file, writing);
    if (problem.isEmpty() && writing) {
        problem = lock();
    }
    if (!problem.isEmpty()) {
        return problem;
    }
    QSqlDatabase database = QSqlDatabase::database(name, false);
    QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000");
    const QByteArray folder = QFile::encodeName(QFileInfo(file).absolutePath());
    frozen = !writing && !QFileInfo::exists(file + QStringLiteral("-wal"))
        && ::access(folder.constData(), W_OK) != 0;
    if (frozen) {
        QUrl url = QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath());
        url.setQuery(QStringLiteral("immutable=1"));
        database.setDatabaseName(QString::fromLatin1(url.toEncoded()));
        options += QLatin1String(";QSQLITE_OPEN_URI");
    } else {
        database.setDatabaseName(file);
    }
    if (!writing) {
        options += QLatin1String(";QSQLITE_OPEN_READONLY");
    }
    database.setConnectOptions(options);
    if (!database.open()) {
        return explain(database.lastError());
    }
    return tune();
}

// A file of its own: closing a second descriptor of the database would drop SQLite's locks.
QString HistoryConnection::lock()
{
    const QString file = where.file + QStringLiteral("-writer");
    lockFile = ::open(QFile::encodeName(file).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lockFile < 0) {
        return QStringLiteral(
                   "cannot be locked: %1 cannot be opened; check who owns it, or remove it")
            .arg(file);
    }
    if (::flock(lockFile, LOCK_EX | LOCK_NB) != 0) {
        return QStringLiteral("is being written by another process; end that one, or choose "
                              "another file");
    }
    return {};
}

QString HistoryConnection::tune()
{
    QSqlQuery pragma = query();
    if (purpose == Purpose::Reading) {
        // The first statement reads the header: a file that is not a database shows here.
        return pragma.exec(QStringLiteral("PRAGMA schema_version")) ? QString()
                                                                    : explain(pragma.lastError());
    }
    // Tables that are made later follow the first; each commit survives a power cut.
    for (const QString &statement :
         {QStringLiteral("PRAGMA auto_vacuum=INCREMENTAL"),
          QStringLiteral("PRAGMA journal_mode=WAL"), QStringLiteral("PRAGMA synchronous=FULL"),
          QStringLiteral("PRAGMA cache_size=-16384"),
          QStringLiteral("PRAGMA journal_size_limit=4194304")}) {
        if (!pragma.exec(statement)) {
            return explain(pragma.lastError());
        }
        pragma.finish();
    }
    return {};
}

QString HistoryConnection::openServer()
{
    QSqlDatabase database = QSqlDatabase::database(name, false);
    const QUrlQuery options(where.server);
    const QString socketFolder = options.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    database.setHostName(socketFolder.isEmpty() ? where.server.host() : socketFolder);
    database.setPort(where.server.port(-1));
    const QString port = options.queryItemValue(QStringLiteral("port"));
    if (!port.isEmpty()) {
        database.setPort(port.toInt());
    }
    database.setDatabaseName(where.server.path(QUrl::FullyDecoded).mid(1));
    database.setUserName(where.server.userName(QUrl::FullyDecoded));
    database.setPassword(where.server.password(QUrl::FullyDecoded));
    database.setConnectOptions(QStringLiteral("connect_timeout=5"));
    if (!database.open()) {
        return QStringLiteral("cannot be reached: %1; check that the server runs, and user and "
                              "database exist")
            .arg(database.lastError().databaseText().simplified());
    }
    QSqlQuery setting = query();
    if (!setting.exec(QStringLiteral("SET client_min_messages = warning"))
        || !setting.exec(QStringLiteral("SET search_path = process_data_history"))) {
        return explain(setting.lastError());
    }
    if (purpose == Purpose::Reading) {
        return setting.exec(QStringLiteral("SET default_transaction_read_only = on"))
            ? QString()
            : explain(setting.lastError());
    }
    // Held for as long as the session lives, so a killed writer leaves nothing behind.
    if (!setting.exec(
            QStringLiteral("SELECT pg_try_advisory_lock(hashtext('process_data_history'))"))
        || !setting.next()) {
        return explain(setting.lastError());
    }
    return setting.value(0).toBool()
        ? QString()
        : QStringLiteral("is being written by another process; end that one, or choose another "
                         "database");
}

QSqlQuery HistoryConnection::query() const
{
    QSqlQuery query(QSqlDatabase::database(name, false));
    query.setForwardOnly(isSqlite());
    return query;
}

QSqlQuery HistoryConnection::stream() const
{
    QSqlQuery query(QSqlDatabase::database(name, false));
    query.setForwardOnly(true);
    return query;
}

bool HistoryConnection::run(const QString &statement)
{
    QSqlQuery direct = query();
    direct.exec(statement);
    return note(direct);
}

bool HistoryConnection::run(const QString &statement, const QVector<QVariant> &values,
                            QVector<QVariant> *row)
{
    QSqlQuery prepared = query();
    if (!prepared.prepare(statement)) {
        failure = explain(prepared.lastError());
        return false;
    }
    for (const QVariant &value : values) {
        prepared.addBindValue(value);
    }
    prepared.exec();
    if (!note(prepared)) {
        return false;
    }
    if (row != nullptr) {
        row->clear();
        const int columns = prepared.next() ? prepared.record().count() : 0;
        for (int i = 0; i < columns; ++i) {
            row->append(prepared.value(i));
        }
    }
    return true;
}

bool HistoryConnection::begin()
{
    return run(isSqlite() ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("BEGIN"));
}

bool HistoryConnection::commit()
{
    return run(QStringLiteral("COMMIT"));
}

void HistoryConnection::rollBack()
{
    const QString reason = failure;
    run(QStringLiteral("ROLLBACK"));
    failure = reason;
}

bool HistoryConnection::note(const QSqlQuery &query)
{
    if (query.isActive()) {
        return true;
    }
    failure = explain(query.lastError());
    return false;
}

QString HistoryConnection::explain(const QSqlError &error) const
{
    const QString text = error.databaseText().simplified();
    if (!isSqlite()) {
        return QStringLiteral("failed: ") + text;
    }
    const QString known = meaning(error.nativeErrorCode().toInt());
    return known.isEmpty() ? QStringLiteral("failed: ") + text
                           : known + QStringLiteral(" (%1)").arg(text);
}
