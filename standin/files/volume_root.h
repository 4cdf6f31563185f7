// The root folder of a volume, and where it lies.
//
// That of the startup volume and of directory volumes is open as long as the volume is there. That of a mounted disk is opened when it is needed, and is
// made sure of then: the disk may be gone, and another one in its place.
#pragma once

#include "platform/platform.h"
#include "standin/files/linux_calls.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace standin
{

using RootHandle = std::shared_ptr<const Descriptor>;   // O_PATH

// What becomes of the descriptor of a mounted disk's root.
enum class Keeping
{
    closed,   // it is closed with the last handle
    open,     // it stays open until it was idle for a second
};

class VolumeRoot
{
public:
    // `opened` is the root; a mounted disk's is not kept.
    VolumeRoot(std::string path, Descriptor opened, const ObjectStatus &status, bool isMountedDisk);

    // Result: noErr; nsvErr if the disk is not there any more; the code of why nobody can tell.
    OSErr open(Keeping keeping, RootHandle &root) const;

    // The same, but nothing that is open already is believed.
    OSErr checkIsThere() const;

    std::string path() const;   // absolute, without a '/' at its end; empty for `/`
    void moveTo(const std::string &path) const;

    // How many descriptors (0 or 1) stay open of those that would keep the disk from being unmounted.
    std::size_t closeIfIdle(std::int64_t usedBefore) const;

private:
    OSErr openAnew(RootHandle &root) const;   // with the mutex held

    ObjectStatus status_;
    RootHandle always_;   // null for a mounted disk
    mutable std::mutex mutex_;
    mutable std::string path_;
    mutable std::weak_ptr<const Descriptor> recent_;
    mutable RootHandle kept_;
    mutable std::int64_t lastUse_ = 0;
};

// Whether the two are the root of the same mount, and not one of an earlier mount that had the same numbers.
bool isSameRoot(const ObjectStatus &a, const ObjectStatus &b);

}   // namespace standin
