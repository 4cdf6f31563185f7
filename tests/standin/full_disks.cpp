#include "tests/standin/full_disks.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace support
{

void fillDisk(const std::string &folder)
{
    const int ballast = open((folder + "/ballast").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    ASSERT_GE(ballast, 0);
    const std::vector<char> piece(1 << 20, 'x');
    for (std::size_t size = piece.size(); size > 0;)
    {
        const ssize_t written = write(ballast, piece.data(), size);
        if (written < 0 && (errno == ENOSPC || errno == EDQUOT))
            size /= 2;
        else
            ASSERT_GT(written, 0);
    }
    fsync(ballast);
    close(ballast);
}

void makeRoom(const std::string &folder)
{
    const std::string ballast = folder + "/ballast";
    // Whoever else looks at the file may keep it from going at once, but not from becoming empty. Beyond a user's share that is refused.
    EXPECT_TRUE(truncate(ballast.c_str(), 0) == 0 || errno == EDQUOT);
    EXPECT_EQ(unlink(ballast.c_str()), 0);
    const int place = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_EQ(syncfs(place), 0);
    close(place);
}

}   // namespace support
