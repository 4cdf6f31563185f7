// The table that the part `zerbdatabase.so` exports.
#include "standin/files/module/database_module.h"

extern "C" [[gnu::visibility("default")]] const standin::DatabaseModule *zerbDatabaseModule();

const standin::DatabaseModule *zerbDatabaseModule()
{
    static const standin::DatabaseModule module{
        .open = sqlite3_open_v2,
        .close = sqlite3_close,
        .setPatience = sqlite3_busy_timeout,
        .giveExtendedCodes = sqlite3_extended_result_codes,
        .configure = sqlite3_db_config,
        .systemErrno = sqlite3_system_errno,
        .execute = sqlite3_exec,
        .compile = sqlite3_prepare_v3,
        .discard = sqlite3_finalize,
        .reset = sqlite3_reset,
        .clearValues = sqlite3_clear_bindings,
        .bindNumber = sqlite3_bind_int64,
        .bindBytes = sqlite3_bind_blob,
        .step = sqlite3_step,
        .number = sqlite3_column_int64,
        .bytes = sqlite3_column_blob,
        .byteCount = sqlite3_column_bytes,
        .makeRandomBytes = sqlite3_randomness,
    };
    return &module;
}
