// The one connection of this process to the database of file IDs, and how it is opened; for file_id_database.cpp alone.
//
// Whoever calls anything here holds the connection's mutex.
#pragma once

#include "standin/files/database_part.h"
#include "standin/files/file_id_database.h"
#include "standin/files/linux_calls.h"

#include <mutex>
#include <string>
#include <unordered_map>

namespace standin
{

struct Connection
{
    std::timed_mutex mutex;
    sqlite3 *database = nullptr;
    bool isReady = false;   // it has our tables
    bool isKept = true;     // for the next one who uses it
    std::string path;
    std::uint64_t device = 0, inode = 0;   // of the file: another one may take its place
    int process = 0;
    std::unordered_map<const char *, sqlite3_stmt *> statements;
};

Connection &connection();

// SQLite's calls, for a database that is being opened or open: Database::open sees that they are there.
inline const DatabaseModule &sqlite()
{
    return *databasePart();
}

OSErr resultFromSQLite(int code);

OSErr execute(const char *sql);

// Opens the database that lies in a state folder, whatever was open before. `exists`: whether there is a file. Result: as of Database::open.
OSErr openConnection(const std::string &folder, DatabaseUse use, bool exists, int patience);

void closeConnection();

// A connection does not survive a fork: the child leaves the parent's as it is and makes its own.
void leaveConnectionToParent();

// Whether the connection is one to the file that lies in this state folder now, and may be used again.
bool isConnectedTo(const std::string &folder, const ObjectStatus &status);

std::string databasePath(const std::string &stateFolder);

}   // namespace standin
