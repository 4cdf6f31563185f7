// The sidecar of a copied file: written whole before anybody sees it, and known as a leftover until its file has a name.
#pragma once

#include "standin/files/copy_bytes.h"
#include "standin/files/sidecar_store.h"
#include "standin/files/temporary_files.h"

namespace standin
{

// What it is to hold. As it is, it gets the source's bytes, which keeps all that other systems have put there.
struct SidecarPlan
{
    bool isWanted = false;
    bool asItIs = false;                  // else only the entries, with changes, and the fork behind them
    std::vector<SidecarPiece> pieces;     // laid over the source's entries
    std::vector<std::uint32_t> leftOut;   // entries that it does not get
};

class SidecarCopy
{
public:
    // `source` is null where there is none. Result: noErr; ioErr if the source is not what it was a moment ago; the disk's code.
    OSErr write(const Sidecar *source, const SidecarPlan &plan, int folder, std::uint32_t mode, CopyMeter &meter);

    // All three do nothing if there is no sidecar. 0 or a negative errno.
    int appear(const std::string &nameOfFile);   // nothing has the name, and the folder's lock is held
    int settle() const;                          // the file has its name: no leftover any more
    int flush() const;

    void takeBack();   // the file did not get its name

private:
    OSErr writeAsItIs(const Sidecar &source, CopyMeter &meter);
    OSErr writeAnew(const Sidecar *source, const SidecarPlan &plan, CopyMeter &meter);

    bool exists_ = false;
    int folder_ = -1;
    std::string name_;
    SidecarFiller finalFiller_ = ownFiller;
    TemporaryFile file_;
};

}   // namespace standin
