// The database in which file IDs are kept: a connection to SQLite, its transactions and statements.
//
// One connection in a process; whoever uses it holds its mutex. The file is made when the first ID is, never when one is only looked up. It is never
// repaired or thrown away: a damaged one is told apart from a busy one and left as it is.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>

struct sqlite3_stmt;

namespace standin
{

enum class DatabaseUse
{
    reading,
    creating,   // makes it, and the folder that it lies in
};

// A statement being carried out. What it was given lives as long as it does.
class DatabaseQuery
{
public:
    explicit DatabaseQuery(const char *sql);   // a literal: the compiled statement is kept for the next time
    ~DatabaseQuery();
    DatabaseQuery(const DatabaseQuery &) = delete;
    DatabaseQuery &operator=(const DatabaseQuery &) = delete;

    DatabaseQuery &with(std::int64_t value);   // the parameters in order
    DatabaseQuery &with(std::uint64_t value) { return with(static_cast<std::int64_t>(value)); }
    DatabaseQuery &withBytes(std::string_view value);

    // The next row. False at the end and after a failure; result() tells.
    bool next();
    OSErr run();   // for what gives no rows
    OSErr result() const { return result_; }

    std::int64_t number(int column) const;
    std::uint64_t unsignedNumber(int column) const { return static_cast<std::uint64_t>(number(column)); }
    std::string_view bytes(int column) const;   // until the next row

private:
    sqlite3_stmt *statement_ = nullptr;
    int parameters_ = 0;
    OSErr result_ = noErr;
};

// The connection, held.
class Database
{
public:
    // How long to wait for other threads and then for other processes, in milliseconds.
    explicit Database(int patience);

    // Result: noErr; fidNotFound if there is none and it is only to be read; fBsyErr while another process or thread holds it; ioErr if it is damaged, or no
    // database of file IDs; wPrErr, afpAccessDenied, dskFulErr and further codes of the disk that it lies on; paramErr if the part that knows SQLite cannot be
    // loaded (database_part.h).
    OSErr open(DatabaseUse use);

    void setPatience(int milliseconds);   // from now on

private:
    std::unique_lock<std::timed_mutex> lock_;
    int patience_;
};

// Whether there was none when it was looked for last, a tenth of a second ago at most. No system call.
bool databaseWasMissing();

// Undone if it is not committed.
class DatabaseTransaction
{
public:
    enum Kind
    {
        reading,
        writing,
    };
    ~DatabaseTransaction();
    OSErr begin(Kind kind);
    OSErr commit();

private:
    bool isOpen_ = false;
};

std::uint32_t randomNumber();

}   // namespace standin
