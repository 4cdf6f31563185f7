// Resource files put together by hand, for tests: well-formed ones, and every field within reach to spoil it.
#pragma once

#include "tests/standin/test_volume.h"

#include <map>
#include <string>
#include <vector>

namespace support
{

struct TestResource
{
    OSType type;
    SInt16 id;
    Bytes bytes;
    std::string name = {};   // Mac Roman
    std::uint8_t attributes = 0;
};

// Where things are in a fork that resourceFork made. The data begin at 256, the map follows them.
struct ForkPlaces
{
    std::size_t map, typeList, nameList;
    std::map<std::pair<OSType, SInt16>, std::size_t> references, items;   // the first of several
};

// In the order of the list; each type stands where it comes first.
Bytes resourceFork(const std::vector<TestResource> &resources, ForkPlaces *places = nullptr);

void setBig(Bytes &bytes, std::size_t at, std::uint64_t value, int width);

// Other forms in which a fork travels.
Bytes appleSingle(const Bytes &data, const Bytes &fork);
Bytes macBinary(const Bytes &data, const Bytes &fork, int version = 2, std::size_t secondHeader = 0);

// A file with these bytes in its resource fork, or in its data fork.
FSRef fileWithFork(TemporaryFolder &folder, const std::string &name, const Bytes &fork);
FSRef fileWithData(TemporaryFolder &folder, const std::string &name, const Bytes &data);

// What a handle holds, as text.
std::string contentOf(Handle handle);

// An open resource file, closed at the end of the test.
class OpenResources
{
public:
    explicit OpenResources(const FSRef &file, SInt8 permission = fsRdPerm) : number_(FSOpenResFile(&file, permission)) {}
    OpenResources(const OpenResources &) = delete;
    OpenResources &operator=(const OpenResources &) = delete;
    ~OpenResources()
    {
        if (number_ != -1)
            CloseResFile(number_);
    }
    SInt16 number() const { return number_; }

private:
    SInt16 number_;
};

}   // namespace support
