// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/store.h"

#include "history/rows.h"
#include "platform/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <atomic>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::int64_t kWholeCheckBytes = 64 << 20; // reading more would take too long
constexpr int kBrokenFilesKept = 3;
// The database's own files beside it.
const std::array kBeside{QStringLiteral("-wal"), QStringLiteral("-shm")};

// Codes of the database library.
constexpr int kCorrupt = 11;
constexpr int kNotADatabase = 26;

QString nextConnection() {
    static std::atomic<int> number{0};
    return u"history-writer-%1"_s.arg(++number);
}

} // namespace

HistoryStore::HistoryStore(const QString& path)
    : path_(path)
    , connection_(nextConnection()) {}

HistoryStore::~HistoryStore() {
    close();
}

bool HistoryStore::isOpen() const {
    return QSqlDatabase::contains(connection_);
}

void HistoryStore::close() {
    if (isOpen())
        QSqlDatabase::removeDatabase(connection_);
}

std::int64_t HistoryStore::fileBytes() const {
    return QFileInfo(path_).size() + QFileInfo(path_ + u"-wal"_s).size();
}

bool HistoryStore::open() {
    setAside_.clear();
    if (openFile() && makeTables() && isWhole() && endLostSession())
        return true;
    if (torn_ && setTornAside() && openFile() && makeTables())
        return true;
    close();
    return false;
}

bool HistoryStore::openFile() {
    close();
    torn_ = false;
    takenTo_ = {};
    const QString folder = QFileInfo(path_).path();
    if (!createFolder(folder)) {
        fault_ = u"there is no folder "_s + folder;
        return false;
    }
    const QFileInfo file(path_);
    if (file.isSymLink() || (file.exists() && !file.isFile())) {
        fault_ = path_ + u" is no ordinary file"_s;
        return false;
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection_);
    database.setDatabaseName(path_);
    database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=2000"_s);
    if (!database.open()) {
        fault_ = database.lastError().databaseText();
        if (fault_.isEmpty())
            fault_ = database.lastError().driverText();
        return false;
    }
    // The readings are nobody else's business, as the settings are not.
    QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner);
    // A killed program loses nothing of what was committed; only a computer that loses its power
    // may lose the last commits, and the file stays whole.
    return run(u"PRAGMA auto_vacuum = INCREMENTAL"_s) && run(u"PRAGMA journal_mode = WAL"_s) &&
           run(u"PRAGMA synchronous = NORMAL"_s) && run(u"PRAGMA wal_autocheckpoint = 250"_s);
}

bool HistoryStore::makeTables() {
    const std::optional<std::int64_t> version = number(u"PRAGMA user_version"_s);
    if (!version)
        return false;
    if (*version == kHistoryVersion)
        return true;
    if (*version > kHistoryVersion) {
        fault_ = u"it was written by a later version of the program"_s;
        return false;
    }
    return inTransaction([this] {
        for (const QString& statement : createStatements()) {
            if (!run(statement))
                return false;
        }
        return run(u"PRAGMA user_version = %1"_s.arg(kHistoryVersion));
    });
}

// A file that was cut short, or that holds something else, is found here or by the first statement
// that comes upon it.
bool HistoryStore::isWhole() {
    if (!run(u"PRAGMA wal_checkpoint(PASSIVE)"_s))
        return false;
    const std::int64_t pageBytes = number(u"PRAGMA page_size"_s).value_or(0);
    const std::optional<std::int64_t> pages = number(u"PRAGMA page_count"_s);
    if (!pages)
        return false;
    if (QFileInfo(path_ + u"-wal"_s).size() == 0 && QFileInfo(path_).size() < *pages * pageBytes) {
        fault_ = u"it was cut short"_s;
        torn_ = true;
        return false;
    }
    if (QFileInfo(path_).size() <= kWholeCheckBytes) {
        QSqlQuery query(QSqlDatabase::database(connection_, false));
        if (!query.exec(u"PRAGMA quick_check(1)"_s) || !query.next())
            return failed(query);
        if (query.value(0).toString() != u"ok") {
            fault_ = query.value(0).toString();
            torn_ = true;
            return false;
        }
    }
    // The last rows, which a torn end would hit first.
    return number(u"SELECT max(at) FROM cycles"_s) && number(u"SELECT max(at) FROM minutes"_s) &&
           number(u"SELECT max(id) FROM events"_s);
}

bool HistoryStore::setTornAside() {
    const QString reason = fault_;
    close();
    const QString name =
        path_ + u".broken-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString aside = name;
    for (int i = 2; QFile::exists(aside); ++i)
        aside = name + u'-' + QString::number(i);
    if (!QFile::rename(path_, aside)) {
        fault_ = reason + u", and it cannot be set aside"_s;
        return false;
    }
    for (const QString& end : kBeside)
        QFile::rename(path_ + end, aside + end);
    setAside_ = aside;
    // The latest may still be mended; a disk that fails every day must not be filled with them.
    const QFileInfo file(path_);
    QDir folder = file.dir();
    QStringList broken =
        folder.entryList({file.fileName() + u".broken-*"_s}, QDir::Files, QDir::Time);
    erase_if(broken, [](const QString& found) {
        return found.endsWith(kBeside[0]) || found.endsWith(kBeside[1]);
    });
    for (const QString& old : broken.mid(kBrokenFilesKept)) {
        folder.remove(old);
        for (const QString& end : kBeside)
            folder.remove(old + end);
    }
    fault_ = reason;
    torn_ = false;
    return true;
}

bool HistoryStore::endLostSession() {
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    if (!query.exec(u"SELECT %1 FROM events WHERE kind = 'session' ORDER BY at DESC, id DESC "
                    "LIMIT 1"_s.arg(eventColumns())))
        return failed(query);
    if (!query.next())
        return true;
    const HistoryEvent last = readEvent(query);
    query.finish();
    if (last.state != u"started")
        return true;
    const std::int64_t lastCycle = number(u"SELECT max(at) FROM cycles"_s).value_or(0);
    const std::int64_t lastEvent = number(u"SELECT max(at) FROM events"_s).value_or(0);
    HistoryBatch end;
    const std::int64_t at = std::max({last.atMs, lastCycle, lastEvent});
    end.events = {{.atMs = at,
                   .kind = u"verdict"_s,
                   .name = {},
                   .state = u"none"_s,
                   .text = u"The program ended without stopping"_s,
                   .detail = {}},
                  {.atMs = at,
                   .kind = u"session"_s,
                   .name = {},
                   .state = u"lost"_s,
                   .text = u"Session lost: the program ended without stopping"_s,
                   .detail = {}}};
    return inTransaction([&] { return putEvents(end.events); });
}

bool HistoryStore::write(const HistoryBatch& batch) {
    // A file that somebody has removed would be written to all the same, and nobody would see it.
    if (isOpen() && !QFile::exists(path_))
        close();
    if (!isOpen() && !open())
        return false;
    const bool written =
        inTransaction([&] { return putEvents(batch.events) && putCycles(batch.cycles); });
    if (written)
        return true;
    const bool again = torn_ && setTornAside() && openFile() && makeTables() && inTransaction([&] {
                           return putEvents(batch.events) && putCycles(batch.cycles);
                       });
    if (!again)
        close();
    return again;
}

bool HistoryStore::putEvents(const std::vector<HistoryEvent>& events) {
    if (events.empty())
        return true;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    if (!query.prepare(eventInsert()))
        return failed(query);
    for (const HistoryEvent& event : events) {
        bindEvent(query, event);
        if (!query.exec())
            return failed(query);
    }
    return true;
}

bool HistoryStore::putCycles(const std::vector<KeptCycle>& cycles) {
    if (cycles.empty())
        return true;
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    if (!query.prepare(cycleInsert()))
        return failed(query);
    for (const KeptCycle& cycle : cycles) {
        bindCycle(query, cycle);
        if (!query.exec())
            return failed(query);
    }
    return true;
}

bool HistoryStore::inTransaction(const std::function<bool()>& work) {
    if (!run(u"BEGIN IMMEDIATE"_s))
        return false;
    if (work() && run(u"COMMIT"_s))
        return true;
    const QString reason = fault_;
    const bool torn = torn_;
    run(u"ROLLBACK"_s);
    fault_ = reason;
    torn_ = torn;
    return false;
}

bool HistoryStore::run(const QString& statement) {
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    return query.exec(statement) || failed(query);
}

// The number that a statement answers; 0 for none of its own.
std::optional<std::int64_t> HistoryStore::number(const QString& statement) {
    QSqlQuery query(QSqlDatabase::database(connection_, false));
    if (!query.exec(statement) || !query.next()) {
        failed(query);
        return std::nullopt;
    }
    return query.value(0).toLongLong();
}

bool HistoryStore::failed(const QSqlQuery& query) {
    const QSqlError error = query.lastError();
    const int code = error.nativeErrorCode().toInt() & 0xFF;
    torn_ = code == kCorrupt || code == kNotADatabase;
    fault_ = error.databaseText().isEmpty() ? u"it cannot be read"_s : error.databaseText();
    return false;
}

} // namespace skyhold
