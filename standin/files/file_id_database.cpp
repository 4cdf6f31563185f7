#include "standin/files/file_id_database.h"

#include "standin/files/errors.h"
#include "standin/files/file_id_connection.h"
#include "standin/files/linux_calls.h"
#include "standin/files/state_folder.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <string>

namespace standin
{

namespace
{

// Where no database was, and when.
struct MissingDatabase
{
    std::mutex mutex;
    std::string folder;
    std::int64_t when = 0;
};

MissingDatabase &missing()
{
    static MissingDatabase database;
    return database;
}

void noteMissing(const std::string &folder, bool isMissing)
{
    const std::lock_guard lock(missing().mutex);
    missing().folder = isMissing ? folder : std::string();
    missing().when = linux_calls::coarseMilliseconds();
}

sqlite3_stmt *compiled(const char *sql, OSErr &result)
{
    auto &known = connection().statements;
    if (const auto found = known.find(sql); found != known.end())
        return found->second;
    sqlite3_stmt *statement = nullptr;
    const int code = sqlite().compile(connection().database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    result = resultFromSQLite(code);
    if (result == noErr)
        known.emplace(sql, statement);
    return statement;
}

}   // namespace

// --- queries -------------------------------------------------------------------------------------------------------------------------------

DatabaseQuery::DatabaseQuery(const char *sql)
{
    statement_ = compiled(sql, result_);
}

DatabaseQuery::~DatabaseQuery()
{
    if (!statement_)
        return;
    sqlite().reset(statement_);
    sqlite().clearValues(statement_);
}

DatabaseQuery &DatabaseQuery::with(std::int64_t value)
{
    if (statement_)
        sqlite().bindNumber(statement_, ++parameters_, value);
    return *this;
}

DatabaseQuery &DatabaseQuery::withBytes(std::string_view value)
{
    if (statement_)
        sqlite().bindBytes(statement_, ++parameters_, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    return *this;
}

bool DatabaseQuery::next()
{
    if (!statement_)
        return false;
    const int code = sqlite().step(statement_);
    result_ = resultFromSQLite(code);
    return code == SQLITE_ROW;
}

OSErr DatabaseQuery::run()
{
    while (next())
        continue;
    return result_;
}

std::int64_t DatabaseQuery::number(int column) const
{
    return sqlite().number(statement_, column);
}

std::string_view DatabaseQuery::bytes(int column) const
{
    const auto *start = static_cast<const char *>(sqlite().bytes(statement_, column));
    return start ? std::string_view(start, static_cast<std::size_t>(sqlite().byteCount(statement_, column))) : std::string_view();
}

// --- the connection ------------------------------------------------------------------------------------------------------------------------

Database::Database(int patience) : lock_(connection().mutex, std::defer_lock), patience_(patience) {}

// By the clock of the day: waiting by another one is a call of the C library that the thread sanitizer of our compiler does not know.
OSErr Database::open(DatabaseUse use)
{
    ObjectStatus status;
    const std::string folder = stateFolder();
    if (!lock_.owns_lock() && !lock_.try_lock_until(std::chrono::system_clock::now() + std::chrono::milliseconds(patience_)))
        return fBsyErr;
    if (folder.empty())
        return use == DatabaseUse::creating ? dirNFErr : fidNotFound;
    leaveConnectionToParent();
    const int failure = linux_calls::statusAt(AT_FDCWD, databasePath(folder).c_str(), status);
    noteMissing(folder, failure != 0 && use == DatabaseUse::reading);
    if (failure != 0 && use == DatabaseUse::reading)
    {
        closeConnection();   // it was taken away
        return failure == -ENOENT || failure == -ENOTDIR ? static_cast<OSErr>(fidNotFound) : resultFromErrno(-failure);
    }
    if (failure == 0 && isConnectedTo(folder, status))
    {
        sqlite().setPatience(connection().database, patience_);
        return noErr;
    }
    if (!databasePart())
        return paramErr;
    const OSErr result = openConnection(folder, use, failure == 0, patience_);
    connection().isReady = result == noErr;
    if (result != noErr)
        closeConnection();
    return result;
}

void Database::setPatience(int milliseconds)
{
    sqlite().setPatience(connection().database, milliseconds);
}

bool databaseWasMissing()
{
    constexpr std::int64_t shortWhile = 100;
    const std::string folder = stateFolder();
    const std::lock_guard lock(missing().mutex);
    return folder.empty() || (missing().folder == folder && linux_calls::coarseMilliseconds() - missing().when < shortWhile);
}

DatabaseTransaction::~DatabaseTransaction()
{
    if (isOpen_)
        execute("ROLLBACK");
}

OSErr DatabaseTransaction::begin(Kind kind)
{
    const OSErr result = DatabaseQuery(kind == writing ? "BEGIN IMMEDIATE" : "BEGIN").run();
    isOpen_ = result == noErr;
    return result;
}

OSErr DatabaseTransaction::commit()
{
    const OSErr result = DatabaseQuery("COMMIT").run();
    if (result == noErr)
        isOpen_ = false;
    return result;
}

std::uint32_t randomNumber()
{
    std::uint32_t number = 0;
    sqlite().makeRandomBytes(sizeof number, &number);
    return number;
}

}   // namespace standin
