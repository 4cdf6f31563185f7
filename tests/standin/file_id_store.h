// The database of file IDs in a folder of its own, for tests.
#pragma once

#include "tests/standin/file_id_calls.h"
#include "tests/standin/processes.h"

#include <sqlite3.h>
#include <string>

namespace support
{

class FileIDStore : public testing::Test
{
protected:
    void SetUp() override { useState(state_ / "zerb"); }
    void TearDown() override { standin::useStateFolder(""); }

    void useState(const std::string &path)
    {
        statePath_ = path;
        standin::useStateFolder(path);
    }
    const std::string &statePath() const { return statePath_; }
    std::string database() const { return statePath_ + "/file-ids.sqlite"; }
    std::string fileNamed(const std::string &name)
    {
        writeFile(files_ / name, name);
        return files_ / name;
    }
    TemporaryFolder &files() { return files_; }
    TemporaryFolder &states() { return state_; }
    FSVolumeRefNum volume() { return infoOf(refAt(files_.path())).volume; }
    std::string pathOfID(UInt32 id) { return support::pathOfID(volume(), id); }
    RoleSetting sameState(uid_t user = 0) const { return {user, {"ZERB_STATE_FOLDER=" + statePath_}}; }

private:
    TemporaryFolder files_, state_;
    std::string statePath_;
};

// A second connection, as another program would have it.
class OtherConnection
{
public:
    explicit OtherConnection(const std::string &path) { EXPECT_EQ(sqlite3_open(path.c_str(), &database_), SQLITE_OK); }
    ~OtherConnection() { sqlite3_close(database_); }
    OtherConnection(const OtherConnection &) = delete;
    OtherConnection &operator=(const OtherConnection &) = delete;
    void run(const char *sql)
    {
        EXPECT_EQ(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database_);
    }

private:
    sqlite3 *database_ = nullptr;
};

}   // namespace support
