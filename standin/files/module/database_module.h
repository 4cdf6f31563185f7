// The part `zerbdatabase.so`: SQLite's calls, as far as the database of file IDs makes them. The stand-in's library is not linked with SQLite and
// loads the part when a database is first opened (standin/files/database_part.h), which few programs ever do; both are built together.
#pragma once

#include <sqlite3.h>

namespace standin
{

struct DatabaseModule
{
    decltype(&sqlite3_open_v2) open;
    decltype(&sqlite3_close) close;
    decltype(&sqlite3_busy_timeout) setPatience;
    decltype(&sqlite3_extended_result_codes) giveExtendedCodes;
    decltype(&sqlite3_db_config) configure;
    decltype(&sqlite3_system_errno) systemErrno;
    decltype(&sqlite3_exec) execute;
    decltype(&sqlite3_prepare_v3) compile;
    decltype(&sqlite3_finalize) discard;
    decltype(&sqlite3_reset) reset;
    decltype(&sqlite3_clear_bindings) clearValues;
    decltype(&sqlite3_bind_int64) bindNumber;
    decltype(&sqlite3_bind_blob) bindBytes;
    decltype(&sqlite3_step) step;
    decltype(&sqlite3_column_int64) number;
    decltype(&sqlite3_column_blob) bytes;
    decltype(&sqlite3_column_bytes) byteCount;
    decltype(&sqlite3_randomness) makeRandomBytes;
};

constexpr const char *databaseModuleFile = "zerbdatabase.so";
constexpr const char *databaseModuleFunction = "zerbDatabaseModule";   // gives a const DatabaseModule *
using DatabaseModuleFunction = const DatabaseModule *();

}   // namespace standin
