// A file server and its client on the same files: what one side sets, the other sees, and nothing of ours is lost.
//
// The server is Debian's smbd with a configuration of its own, on the loopback interface and a free port, everything in the test's folder.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <arpa/inet.h>
#include <csignal>
#include <fstream>
#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

int freePort()
{
    int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bool bound = bind(descriptor, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
                 getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size) == 0;
    close(descriptor);
    return bound ? ntohs(address.sin_port) : 0;
}

class Server
{
public:
    explicit Server(const std::string &folder) : folder_(folder), port_(freePort())
    {
        for (std::string part : {"", "/lock", "/state", "/cache", "/private", "/pid", "/ncalrpc", "/share"})
            mkdir((folder + part).c_str(), 0755);
        writeConfiguration();
        // In a process group of its own: it ends the whole group when it ends.
        process_ = std::make_unique<Running>(
            start({"setsid", "/usr/sbin/smbd", "--foreground", "--configfile=" + configuration(), "--no-process-group"}));
        waitUntilReady();
    }
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;
    ~Server()
    {
        process_->kill(SIGTERM);
        process_->wait();
    }

    const std::string &problem() const { return problem_; }
    std::string share() const { return folder_ + "/share"; }
    std::string operator/(const std::string &name) const { return share() + "/" + name; }

    Ended client(const std::string &commands) const
    {
        return run({"smbclient", "//127.0.0.1/share", "--no-pass", "--port=" + std::to_string(port_), "--configfile=" + configuration(),
                    "--command=" + commands});
    }
    Bytes get(const std::string &stream) const
    {
        std::string local = folder_ + "/got";
        unlink(local.c_str());
        Ended ended = client("get \"" + stream + "\" " + local);
        EXPECT_TRUE(exists(local)) << ended.output;
        return exists(local) ? readFile(local) : Bytes{};
    }
    void put(const Bytes &bytes, const std::string &stream) const
    {
        std::string local = folder_ + "/sent";
        writeFile(local, bytes);
        Ended ended = client("put " + local + " \"" + stream + "\"");
        EXPECT_EQ(ended.output.find("NT_STATUS"), std::string::npos) << ended.output;
        EXPECT_EQ(ended.status, 0) << ended.output;
    }

private:
    std::string configuration() const { return folder_ + "/smb.conf"; }
    void writeConfiguration() const;
    void waitUntilReady();
    std::string folder_, problem_;
    int port_;
    std::unique_ptr<Running> process_;
};

void Server::writeConfiguration() const
{
    std::ofstream file(configuration());
    file << "[global]\n"
         << " server role = standalone server\n map to guest = Bad User\n guest account = root\n"
         << " smb ports = " << port_
         << "\n interfaces = lo\n bind interfaces only = yes\n disable spoolss = yes\n load printers = no\n printing = bsd\n"
         << " log file = " << folder_ << "/log\n";
    for (std::string part : {"lock directory = /lock", "state directory = /state", "cache directory = /cache", "private dir = /private",
                             "pid directory = /pid", "ncalrpc dir = /ncalrpc"})
        file << " " << part.substr(0, part.find('/')) << folder_ << part.substr(part.find('/')) << "\n";
    file << " vfs objects = fruit streams_xattr\n ea support = yes\n fruit:resource = file\n fruit:metadata = netatalk\n"
         << "[share]\n path = " << share() << "\n guest ok = yes\n read only = no\n";
}

void Server::waitUntilReady()
{
    Ended ended;
    for (int tries = 0; tries < 100; ++tries)
    {
        ended = client("exit");
        if (ended.status == 0)
            return;
        usleep(100000);
    }
    process_->kill(SIGTERM);
    std::string said = process_->wait().output;
    problem_ = "the server does not start here: " + said + ended.output;
}

class Samba : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!programExists("smbd") || !programExists("smbclient"))
            GTEST_SKIP() << "no smbd or no smbclient on this machine";
        if (!canBecomeOtherUsers())
            GTEST_SKIP() << "the server needs root";
        if (!diskOf(DiskKind::plain).hasAttributes)
            GTEST_SKIP() << "no attributes on the disk of the temporary folder";
        static std::string problem;   // a server that did not start once is not waited for again
        if (!problem.empty())
            GTEST_SKIP() << problem;
        folder_.emplace();
        server_ = std::make_unique<Server>(*folder_ / "samba");
        problem = server_->problem();
        if (!problem.empty())
            GTEST_SKIP() << problem;
    }
    void TearDown() override { server_.reset(); }
    Server &server() { return *server_; }

    FSRef fileRef(const std::string &name)
    {
        writeFile(server() / name, "data");
        return refAt(server() / name);
    }

private:
    std::optional<TemporaryFolder> folder_;
    std::unique_ptr<Server> server_;
};

// The client's record: 60 bytes with the Finder information at 16.
Bytes clientRecord(const Bytes &finderInfo)
{
    Bytes record = bytesOf(std::string_view("AFP\0\0\0\1\0\0\0\0\0", 12));
    appendBig(record, 0x80000000, 4);   // never backed up
    record.insert(record.end(), finderInfo.begin(), finderInfo.end());
    record.resize(60);
    return record;
}

Bytes finderInfoIn(const Bytes &record)
{
    return record.size() == 60 ? Bytes(record.begin() + 16, record.begin() + 48) : Bytes{};
}

Bytes typicalFinderInfo()
{
    Bytes info = bytesOf("PICTttxt");
    appendBig(info, 0x0400, 2);
    info.resize(32);
    return info;
}

TEST_F(Samba, TheClientSeesOurTypeCreatorAndFlags)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(setType(ref, code("PICT"), code("ttxt"), 0x0400), noErr);
    EXPECT_EQ(finderInfoIn(server().get("file:AFP_AfpInfo")), typicalFinderInfo());
}

TEST_F(Samba, WeSeeTheClientsTypeCreatorAndFlags)
{
    FSRef ref = fileRef("file");
    server().put(clientRecord(typicalFinderInfo()), "file:AFP_AfpInfo");
    FileInfo file = fileInfo(infoOf(ref));
    EXPECT_EQ(+file.fileType, code("PICT"));
    EXPECT_EQ(+file.fileCreator, code("ttxt"));
    EXPECT_EQ(+file.finderFlags, 0x0400);
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt"), 0x0400), noErr);
    Bytes expected = typicalFinderInfo();
    std::copy_n("TEXT", 4, expected.begin());
    EXPECT_EQ(finderInfoIn(server().get("file:AFP_AfpInfo")), expected);
}

TEST_F(Samba, FoldersHaveThemToo)
{
    mkdir((server() / "inner").c_str(), 0755);
    FSRef ref = refAt(server() / "inner");
    FSCatalogInfo info{};
    FolderInfo record{};
    record.finderFlags = kHasCustomIcon;
    std::copy_n(reinterpret_cast<const UInt8 *>(&record), sizeof record, info.finderInfo);
    ASSERT_EQ(change(ref, kFSCatInfoFinderInfo, info), noErr);
    Bytes seen = finderInfoIn(server().get("inner:AFP_AfpInfo"));
    ASSERT_EQ(seen.size(), 32u);
    EXPECT_EQ(big32(seen, 8) >> 16, kHasCustomIcon);
}

TEST_F(Samba, TheClientReadsOurForkAndWeReadItsOwn)
{
    FSRef ours = fileRef("ours"), theirs = fileRef("theirs");
    Bytes fork(5000, 0x5A), another = bytesOf("another fork");
    ASSERT_EQ(writeFork(ours, true, fork), noErr);
    EXPECT_EQ(server().get("ours:AFP_Resource"), fork);
    server().put(another, "theirs:AFP_Resource");
    EXPECT_EQ(forkOf(theirs), another);
    ASSERT_EQ(writeFork(theirs, true, fork), noErr) << "a sidecar that the server wrote";
    EXPECT_EQ(server().get("theirs:AFP_Resource"), fork);
}

// Everything that we keep about a file, as a client must leave it.
FSCatalogInfo keepsake()
{
    FSCatalogInfo info{};
    info.createDate = dateOfUnix(1000000000, 12345);
    info.backupDate = dateOfUnix(1100000000, 54321);
    info.textEncodingHint = 29;
    info.nodeFlags = kFSNodeLockedMask;
    return info;
}

void expectKept(const FSRef &ref)
{
    FSCatalogInfo info = infoOf(ref);
    EXPECT_EQ(info.createDate, keepsake().createDate);
    EXPECT_EQ(info.backupDate, keepsake().backupDate);
    EXPECT_EQ(+info.textEncodingHint, +keepsake().textEncodingHint);
    EXPECT_TRUE(info.nodeFlags & kFSNodeLockedMask);
}

TEST_F(Samba, AClientsWritingLeavesEverythingElseOfOurs)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(writeFork(ref, true, bytesOf("our fork")), noErr);
    ASSERT_EQ(setType(ref, code("PICT"), code("ttxt"), 0x0400), noErr);
    ASSERT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate | kFSCatInfoTextEncoding | kFSCatInfoNodeFlags, keepsake()), noErr);

    EXPECT_EQ(server().get("file:AFP_Resource"), bytesOf("our fork"));
    EXPECT_EQ(finderInfoIn(server().get("file:AFP_AfpInfo")), typicalFinderInfo());
    server().put(bytesOf("the client's own and longer fork"), "file:AFP_Resource");
    EXPECT_EQ(forkOf(ref), bytesOf("the client's own and longer fork"));
    EXPECT_EQ(typeOf(ref), code("PICT"));
    expectKept(ref);

    server().put(clientRecord(Bytes(32)), "file:AFP_AfpInfo");   // the server then takes the whole attribute away
    EXPECT_EQ(typeOf(ref), 0u);
    EXPECT_EQ(forkOf(ref), bytesOf("the client's own and longer fork"));
    expectKept(ref);
    EXPECT_EQ(readFile(server() / "file"), bytesOf("data"));
}

TEST_F(Samba, AClientsRenameAndDeletionTakeTheForkAlong)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(writeFork(ref, true, bytesOf("our fork")), noErr);
    ASSERT_EQ(setType(ref, code("PICT"), code("ttxt")), noErr);
    Ended ended = server().client("rename file renamed");
    ASSERT_TRUE(exists(server() / "renamed")) << ended.output;
    EXPECT_EQ(forkOf(refAt(server() / "renamed")), bytesOf("our fork"));
    EXPECT_EQ(typeOf(refAt(server() / "renamed")), code("PICT"));
    ended = server().client("del renamed");
    EXPECT_TRUE(namesIn(server().share()).empty()) << ended.output;
}

TEST_F(Samba, TheClientIsNotShownOurSidecars)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(writeFork(ref, true, bytesOf("our fork")), noErr);
    std::string listing = server().client("ls").output;
    EXPECT_NE(listing.find("file"), std::string::npos);
    EXPECT_EQ(listing.find("._file"), std::string::npos) << listing;
}

}   // namespace
