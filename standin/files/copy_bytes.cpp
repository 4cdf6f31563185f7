#include "standin/files/copy_bytes.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <utility>
#include <vector>

namespace standin
{

namespace
{

constexpr std::uint64_t pieceBetweenReports = 64 << 20;
constexpr std::uint64_t smallestWorthSharing =
    1 << 20;   // below that, copying in the kernel shares by itself where it can, and costs no call more
constexpr std::uint64_t smallestHole = 4096;
constexpr std::size_t bufferSize = 256 << 10;

struct Settings
{
    std::atomic<bool> syncs{false};
    std::atomic<bool> hasProgress{false};
    std::mutex mutex;
    std::shared_ptr<const CopyProgress> progress;
};

Settings &settings()
{
    static Settings ours;
    return ours;
}

bool meansFull(ssize_t failure)
{
    return failure == -ENOSPC || failure == -EDQUOT || failure == -EFBIG;
}

class ContentsCopier
{
public:
    ContentsCopier(int from, int to, CopyMeter &meter) : from_(from), to_(to), meter_(meter) {}
    int copyUpTo(std::uint64_t size);
    int copyAroundHoles(std::uint64_t size);

private:
    enum class Way
    {
        inKernel,
        sending,
        buffer,
    };
    ssize_t copySome(std::uint64_t offset, std::uint64_t length);
    ssize_t copyThroughBuffer(std::uint64_t offset, std::uint64_t length);
    int copySpan(std::uint64_t offset, std::uint64_t end);

    int from_, to_;
    CopyMeter &meter_;
    Way way_ = Way::inKernel;
    std::vector<std::uint8_t> buffer_;
};

ssize_t ContentsCopier::copyThroughBuffer(std::uint64_t offset, std::uint64_t length)
{
    buffer_.resize(bufferSize);
    const std::span<std::uint8_t> piece(buffer_.data(), std::min<std::uint64_t>(length, buffer_.size()));
    const ssize_t got = linux_calls::readAt(from_, piece, offset);
    if (got <= 0)
        return got;
    const int failure = linux_calls::writeAt(to_, piece.first(static_cast<std::size_t>(got)), offset);
    return failure ? failure : got;
}

// A way that the two files refuse, or that makes no headway, is not tried again. Only the last one is believed that the source ends here.
ssize_t ContentsCopier::copySome(std::uint64_t offset, std::uint64_t length)
{
    for (; way_ != Way::buffer; way_ = way_ == Way::inKernel ? Way::sending : Way::buffer)
    {
        const auto call = way_ == Way::inKernel ? linux_calls::copyRange : linux_calls::sendBytes;
        const ssize_t copied = call(from_, offset, to_, offset, length);
        if (copied > 0 || meansFull(copied))
            return copied;
    }
    return copyThroughBuffer(offset, length);
}

int ContentsCopier::copySpan(std::uint64_t offset, std::uint64_t end)
{
    while (offset < end)
    {
        const ssize_t copied = copySome(offset, std::min(end - offset, meter_.largestPiece()));
        if (copied <= 0)
            return static_cast<int>(copied);
        offset += static_cast<std::uint64_t>(copied);
        meter_.add(static_cast<std::uint64_t>(copied));
    }
    return 0;
}

int ContentsCopier::copyUpTo(std::uint64_t size)
{
    // There are files that say that they are empty and are not: what the kernel makes up while it is read.
    return size > 0 ? copySpan(0, size) : (way_ = Way::buffer, copySpan(0, UINT64_MAX));
}

int ContentsCopier::copyAroundHoles(std::uint64_t size)
{
    ObjectStatus now;
    for (std::uint64_t offset = 0; offset < size;)
    {
        const std::int64_t start = linux_calls::nextData(from_, offset);
        if (start < 0 && start != -ENXIO)
            return copySpan(offset, size);   // a disk that cannot tell
        const std::int64_t end = start < 0 ? start : linux_calls::nextHole(from_, static_cast<std::uint64_t>(start));
        const std::uint64_t dataStart = start < 0 ? size : std::min(size, static_cast<std::uint64_t>(start));
        const std::uint64_t dataEnd = end < 0 ? size : std::min(size, static_cast<std::uint64_t>(end));
        meter_.add(dataStart - offset);
        if (const int failure = copySpan(dataStart, dataEnd))
            return failure;
        offset = dataEnd;
    }
    if (const int failure = linux_calls::statusOf(from_, now))
        return failure;
    return linux_calls::setSize(to_, std::min(size, now.size));
}

}   // namespace

void setSyncsCopies(bool syncs)
{
    settings().syncs = syncs;
}

bool copiesAreSynced()
{
    return settings().syncs;
}

void setCopyProgress(CopyProgress progress)
{
    const std::lock_guard lock(settings().mutex);
    settings().hasProgress = static_cast<bool>(progress);
    settings().progress = progress ? std::make_shared<const CopyProgress>(std::move(progress)) : nullptr;
}

CopyMeter::CopyMeter(std::uint64_t bytesInAll) : bytesInAll_(bytesInAll)
{
    if (!settings().hasProgress)
        return;
    const std::lock_guard lock(settings().mutex);
    progress_ = settings().progress;
}

// A chopped copy shares no blocks, so it is only chopped for somebody who listens.
std::uint64_t CopyMeter::largestPiece() const
{
    return progress_ ? pieceBetweenReports : UINT64_MAX;
}

void CopyMeter::add(std::uint64_t bytes)
{
    bytesDone_ += bytes;
    if (progress_ && bytes > 0)
        (*progress_)(bytesDone_, std::max(bytesInAll_, bytesDone_));
}

int copyContents(int from, const ObjectStatus &status, int to, CopyMeter &meter)
{
    ContentsCopier copier(from, to, meter);
    if (status.size >= smallestWorthSharing && linux_calls::shareBlocks(from, to) == 0)
    {
        meter.add(status.size);
        return 0;
    }
    const bool hasHoles = status.allocated + smallestHole <= status.size;
    return hasHoles ? copier.copyAroundHoles(status.size) : copier.copyUpTo(status.size);
}

}   // namespace standin
