// The bytes of a whole file into another one, by the cheapest way that the two disks know.
#pragma once

#include "standin/files/linux_copies.h"
#include "standin/standin.h"

#include <memory>

namespace standin
{

// What the host asked for (standin.h), as it was when a copy began.
bool copiesAreSynced();

// Tells the host how far a copy has come, if it wants to know.
class CopyMeter
{
public:
    explicit CopyMeter(std::uint64_t bytesInAll);
    std::uint64_t largestPiece() const;   // after which the host wants to hear something
    void add(std::uint64_t bytes);

private:
    std::shared_ptr<const CopyProgress> progress_;
    std::uint64_t bytesDone_ = 0, bytesInAll_;
};

// Copies the contents of an open file into an empty one. Blocks are shared where the disk can, and holes stay holes. A file that grows meanwhile is copied
// to the length in `status`, one that is cut to where it ends now. Result: 0 or a negative errno.
int copyContents(int from, const ObjectStatus &status, int to, CopyMeter &meter);

}   // namespace standin
