// Iterators in tests, and folders to list with them.
#pragma once

#include "tests/standin/test_volume.h"

#include <algorithm>
#include <set>

namespace support
{

// An iterator that is closed with the object.
class OpenIterator
{
public:
    explicit OpenIterator(const FSRef &folder, FSIteratorFlags flags = kFSIterateFlat)
    {
        EXPECT_EQ(FSOpenIterator(&folder, flags, &iterator_), noErr);
    }
    ~OpenIterator() { EXPECT_EQ(FSCloseIterator(iterator_), noErr); }
    OpenIterator(const OpenIterator &) = delete;
    OpenIterator &operator=(const OpenIterator &) = delete;
    operator FSIterator() const { return iterator_; }

private:
    FSIterator iterator_ = nullptr;
};

inline std::string plain(const HFSUniStr255 &name)
{
    return std::string(name.unicode, name.unicode + name.length);
}

// Every name, sorted; each must come once.
inline std::vector<std::string> namesFrom(FSIterator iterator, ItemCount atOnce)
{
    std::vector<std::string> list;
    std::vector<HFSUniStr255> names(atOnce);
    for (OSErr result = noErr; result == noErr;)
    {
        ItemCount count = 0;
        result = FSGetCatalogInfoBulk(iterator, atOnce, &count, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, names.data());
        EXPECT_TRUE(result == noErr || result == errFSNoMoreItems) << result;
        EXPECT_TRUE(result == errFSNoMoreItems || count == atOnce) << count;
        for (ItemCount i = 0; i < count; ++i)
            list.push_back(plain(names[i]));
    }
    std::sort(list.begin(), list.end());
    EXPECT_EQ(std::set<std::string>(list.begin(), list.end()).size(), list.size());
    return list;
}

using Names = std::vector<std::string>;

class ListingsTest : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
    void makeFiles(int count)
    {
        for (int number = 0; number < count; ++number)
            writeFile(folder() / ("file" + std::to_string(number)), std::string(static_cast<std::size_t>(number), 'x'));
    }
    Names listed() { return namesFrom(OpenIterator(folderRef()), 5); }
};

}   // namespace support
