#include "standin/files/file_id_connection.h"

#include "standin/files/errors.h"
#include "standin/files/linux_users.h"
#include "standin/files/state_folder.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/magic.h>

namespace standin
{

namespace
{

constexpr int ourApplication = 0x5A464944;   // "ZFID"
constexpr int ourVersion = 1;

// A volume is known by what it is, not by where it is mounted. Places are names in folders, whose identities are kept too, so that one that was renamed is
// found again. `sum` is over all fields of a row: bytes of a damaged database must not lead to another file.
constexpr const char *layout =
    "CREATE TABLE volumes (number INTEGER PRIMARY KEY, identity TEXT NOT NULL UNIQUE);"
    "CREATE TABLE folders (number INTEGER PRIMARY KEY, volume INTEGER NOT NULL, parent INTEGER NOT NULL, name BLOB NOT NULL,"
    " device INTEGER NOT NULL, inode INTEGER NOT NULL, birth INTEGER NOT NULL, sum INTEGER NOT NULL);"
    "CREATE INDEX folders_by_inode ON folders (inode);"
    "CREATE TABLE files (volume INTEGER NOT NULL, id INTEGER NOT NULL, folder INTEGER NOT NULL, name BLOB NOT NULL,"
    " device INTEGER NOT NULL, inode INTEGER NOT NULL, birth INTEGER NOT NULL, sum INTEGER NOT NULL, PRIMARY KEY (volume, id)) WITHOUT "
    "ROWID;"
    "CREATE INDEX files_by_inode ON files (inode);"
    "CREATE INDEX files_by_place ON files (folder, name);"
    "PRAGMA application_id = 1514555716;"
    "PRAGMA user_version = 1;";

// The disk's own word where SQLite only says that reading, writing or opening failed.
OSErr resultOfDisk(OSErr otherwise)
{
    const int failure = sqlite().systemErrno(connection().database);
    return failure == 0 || failure == ENOENT ? otherwise : resultFromErrno(failure);
}

}   // namespace

Connection &connection()
{
    static auto *theConnection = new Connection;   // threads may still use it while the process ends
    return *theConnection;
}

OSErr resultFromSQLite(int code)
{
    switch (code & 0xFF)
    {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE: return noErr;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return fBsyErr;
    case SQLITE_FULL: return dskFulErr;
    case SQLITE_READONLY: return wPrErr;
    case SQLITE_PERM:
    case SQLITE_AUTH: return afpAccessDenied;
    case SQLITE_NOMEM: return memFullErr;
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR: return resultOfDisk(ioErr);
    default: return ioErr;   // damaged, or no database at all
    }
}

OSErr execute(const char *sql)
{
    return resultFromSQLite(sqlite().execute(connection().database, sql, nullptr, nullptr, nullptr));
}

// --- closing -------------------------------------------------------------------------------------------------------------------------------

void closeConnection()
{
    Connection &open = connection();
    if (!open.database)
        return;
    for (const auto &[sql, statement] : open.statements)
        sqlite().discard(statement);
    open.statements.clear();
    sqlite().close(open.database);
    open.database = nullptr;
    open.isReady = false;
}

void leaveConnectionToParent()
{
    if (connection().process == linux_calls::processNumber())
        return;
    connection().database = nullptr;
    connection().isReady = false;
    connection().statements.clear();
}

// --- opening -------------------------------------------------------------------------------------------------------------------------------

namespace
{

void closeAtExit()
{
    const std::unique_lock lock(connection().mutex, std::try_to_lock);
    if (lock.owns_lock() && connection().database && connection().process == linux_calls::processNumber())
        closeConnection();
}

// The journal that many readers and one writer share lives in memory that processes share, which network disks do not have.
bool isOnNetwork(const std::string &folder)
{
    constexpr std::int64_t smb2 = 0xFE534D42, cifs = 0xFF534D42, plan9 = 0x01021997, ceph = 0x00C36400, afs = 0x5346414F;
    const Descriptor opened(linux_calls::openAbsoluteFolder(folder.c_str()));
    const std::int64_t kind = opened.isOpen() ? linux_calls::diskKind(opened.number()) : 0;
    return kind == NFS_SUPER_MAGIC || kind == smb2 || kind == cifs || kind == plan9 || kind == ceph || kind == afs;
}

int numberFromPragma(const char *sql, OSErr &result)
{
    DatabaseQuery query(sql);
    const int number = query.next() ? static_cast<int>(query.number(0)) : 0;
    result = query.result();
    return number;
}

// Whether it is ours: with our tables, or empty as yet.
OSErr checkKind(bool &isEmpty)
{
    OSErr result = noErr;
    const int application = numberFromPragma("PRAGMA application_id", result);
    const int version = result == noErr ? numberFromPragma("PRAGMA user_version", result) : 0;
    const int objects = result == noErr ? numberFromPragma("SELECT count(*) FROM sqlite_schema", result) : 0;
    isEmpty = application == 0 && version == 0 && objects == 0;
    if (result != noErr || isEmpty)
        return result;
    return application == ourApplication && version == ourVersion ? noErr : ioErr;
}

OSErr openFile(const std::string &name, int flags, int patience)
{
    Connection &open = connection();
    const int code = sqlite().open(name.c_str(), &open.database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    const OSErr result = resultFromSQLite(code);
    if (result != noErr)
    {
        closeConnection();
        return result;
    }
    sqlite().setPatience(open.database, patience);
    sqlite().giveExtendedCodes(open.database, 1);
    sqlite().configure(open.database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite().configure(open.database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // A kill loses nothing either way; a power cut may lose the last IDs but never damages what is there. The journal may grow to 16 MB, so that many IDs
    // in a row seldom wait for the disk.
    return execute("PRAGMA synchronous = NORMAL; PRAGMA cell_size_check = ON; PRAGMA wal_autocheckpoint = 4000");
}

std::string asImmutableFile(const std::string &path)
{
    std::string name = "file:";
    for (const char c : path)
    {
        constexpr const char *digits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        if (c == '%' || c == '?' || c == '#')
            name.append({'%', digits[byte >> 4], digits[byte & 15]});
        else
            name += c;
    }
    return name + "?immutable=1";
}

// In a folder that cannot be written to, the shared memory cannot be made; but nobody writes there either.
OSErr openUnchanging(const std::string &path, int patience, OSErr otherwise, bool &isEmpty)
{
    ObjectStatus journal;
    closeConnection();
    if (linux_calls::statusAt(AT_FDCWD, (path + "-wal").c_str(), journal) == 0 && journal.size != 0)
        return otherwise;   // there is more in it than can be seen from here
    if (OSErr result = openFile(asImmutableFile(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, patience))
        return result;
    return checkKind(isEmpty);
}

OSErr makeTables(const std::string &folder)
{
    if (!isOnNetwork(folder))
        sqlite().execute(connection().database, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);   // it does without, too
    DatabaseTransaction transaction;
    bool isEmpty = false;
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    if (OSErr result = checkKind(isEmpty))   // another process may have made them meanwhile
        return result;
    if (isEmpty)
        if (OSErr result = execute(layout))
            return result;
    return transaction.commit();
}

// Notes which file is open, so that its being replaced is seen.
void noteFile(const std::string &path)
{
    ObjectStatus status;
    Connection &open = connection();
    if (linux_calls::statusAt(AT_FDCWD, path.c_str(), status) < 0)
        status = {};
    open.path = path;
    open.device = status.device;
    open.inode = status.inode;
    open.process = linux_calls::processNumber();
    [[maybe_unused]] static const int registered = std::atexit(closeAtExit);
}

}   // namespace

std::string databasePath(const std::string &stateFolder)
{
    return stateFolder + "/file-ids.sqlite";
}

bool isConnectedTo(const std::string &folder, const ObjectStatus &status)
{
    const Connection &open = connection();
    const bool isSameFile = open.path == databasePath(folder) && open.device == status.device && open.inode == status.inode;
    return open.database && open.isReady && open.isKept && isSameFile;
}

OSErr openConnection(const std::string &folder, DatabaseUse use, bool exists, int patience)
{
    const std::string path = databasePath(folder);
    const int create = use == DatabaseUse::creating ? SQLITE_OPEN_CREATE : 0;
    bool isEmpty = false;
    closeConnection();
    connection().isKept = true;
    if (use == DatabaseUse::creating)
        if (const int failure = makeStateFolder(folder))
            return resultFromErrno(-failure);
    OSErr result = openFile(path, SQLITE_OPEN_READWRITE | create, patience);
    noteFile(path);
    if (result == noErr)
        result = checkKind(isEmpty);
    if (exists && (result == wPrErr || result == afpAccessDenied || result == ioErr))
    {
        result = openUnchanging(path, patience, result, isEmpty);
        connection().isKept = false;   // what others write later would not be seen
    }
    if (result == noErr && isEmpty)
        result = use == DatabaseUse::creating ? makeTables(folder) : static_cast<OSErr>(fidNotFound);
    return result;
}

}   // namespace standin
