// Hostile bytes as a reference, and as the fields of one: what this process did not make is refused, what it made comes back.
#include "standin/files/reference_format.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <cstring>

namespace
{

using namespace standin;

constexpr std::uint64_t knownDevice = 0x0000000800000001;
constexpr UInt16 knownNumber = 3;

// Takes the bytes of an input one after the other; zeros follow its end.
class Input
{
public:
    Input(const unsigned char *data, std::size_t size) : data_(data), left_(size) {}

    template <typename Value>
    Value take()
    {
        Value value{};
        const std::size_t count = std::min(left_, sizeof value);
        if (count > 0)
            std::memcpy(&value, data_, count);
        skip(count);
        return value;
    }

    std::string takeName()
    {
        const std::string name(reinterpret_cast<const char *>(data_), std::min<std::size_t>(left_, 255));
        skip(name.size());
        return name.empty() ? "x" : name;
    }

private:
    void skip(std::size_t count)
    {
        data_ += count;
        left_ -= count;
    }
    const unsigned char *data_;
    std::size_t left_;
};

// The fuzzer watches the comparison of check sums and may well forge one. Even then nothing is read that makes no sense.
void checkForeignBytes(Input input)
{
    const auto reference = input.take<FSRef>();
    ReferenceFields fields;
    fields.inode = 77;
    if (!readReference(reference, fields))
        require(fields.inode == 77);
    else
        require(fields.device == knownDevice && fields.name.size() <= longestNameInReference && fields.nameIsHashed == fields.name.empty());
}

ReferenceFields fieldsFrom(Input &input)
{
    ReferenceFields fields;
    fields.volume = input.take<FSVolumeRefNum>();
    fields.parentID = input.take<UInt32>();
    fields.device = knownDevice;
    fields.inode = input.take<std::uint64_t>();
    fields.time = input.take<Birth>();
    fields.timeIsBirth = (input.take<unsigned char>() & 1) != 0;
    return fields;
}

void checkRoundTrip(Input input)
{
    const auto changedByte = input.take<unsigned char>();
    const auto change = input.take<unsigned char>();
    const ReferenceFields fields = fieldsFrom(input);
    const std::string name = input.takeName();

    FSRef reference = writeReference(fields, name);
    ReferenceFields read;
    require(readReference(reference, read));
    require(read.volume == fields.volume && read.parentID == fields.parentID && read.device == fields.device);
    require(read.inode == fields.inode && read.time == fields.time && read.timeIsBirth == fields.timeIsBirth);
    require(read.nameIsHashed == isLongName(name));
    require(read.nameIsHashed ? read.nameHash == longNameHash(name) : read.name == name);

    reinterpret_cast<unsigned char *>(&reference)[changedByte % sizeof reference] ^= change;
    require(readReference(reference, read) == (change == 0));
}

}   // namespace

// The numbers of devices are the volumes' business. Here there is one device.
UInt16 standin::numberOfDevice(std::uint64_t)
{
    return knownNumber;
}

bool standin::deviceOfNumber(UInt16 number, std::uint64_t &device)
{
    if (number == knownNumber)
        device = knownDevice;
    return number == knownNumber;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    checkForeignBytes({data, size});
    checkRoundTrip({data, size});
    return 0;
}
