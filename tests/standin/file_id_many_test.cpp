// Very many file IDs.
#include "tests/standin/file_id_store.h"

#include "standin/files/file_id_database.h"
#include "standin/files/file_id_places.h"

#include <chrono>

namespace
{

using namespace support;
using namespace standin;

// Rows as of files that are gone since, all in one transaction.
void addRows(const std::string &volumeIdentity, int count, std::vector<UInt32> &ids)
{
    Database database(0);
    DatabaseTransaction transaction;
    RowNumber volume = 0;
    ASSERT_EQ(database.open(DatabaseUse::creating), noErr);
    ASSERT_EQ(transaction.begin(DatabaseTransaction::writing), noErr);
    ASSERT_EQ(findOrAddVolumeRow(volumeIdentity, volume), noErr);
    for (int i = 0; i < count; ++i)
    {
        const auto number = static_cast<std::uint64_t>(i);
        StoredFile file{0, rootRow, "gone " + std::to_string(i), {0, (std::uint64_t{1} << 40) + number, 1000 + number}};
        ASSERT_EQ(addFileRow(volume, file), noErr);
        ids.push_back(file.id);
    }
    ASSERT_EQ(transaction.commit(), noErr);
}

TEST_F(FileIDStore, AHundredThousandIDsAreToldApartWithoutLookingThroughThem)
{
    constexpr int many = 100000, few = 100;
    std::vector<UInt32> gone;
    std::vector<FSRef> refs;
    for (int i = 0; i < few; ++i)
        refs.push_back(refAt(fileNamed("file" + std::to_string(i))));
    addRows(storedIdentityOf(*findVolume(volume())), many, gone);
    ASSERT_EQ(gone.size(), std::size_t{many});
    EXPECT_EQ(gone.back() - gone.front(), UInt32{many - 1}) << "one after another, each given once";
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < few; ++i)
    {
        FSRef &ref = refs[static_cast<std::size_t>(i)];
        const NewFileID made = makeID(ref);
        ASSERT_EQ(made.result, noErr);
        ASSERT_GT(made.id, gone.back());
        ASSERT_EQ(rename(ref, "renamed" + std::to_string(i)), noErr);
        ASSERT_EQ(pathOfID(made.id), files() / ("renamed" + std::to_string(i)));
        ASSERT_EQ(resolveID(volume(), gone[static_cast<std::size_t>(i * 997)]).result, fnfErr);
    }
    // To look through all rows takes several milliseconds each time, and there are many such times in each round.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50 * few));
}

}   // namespace
