// What a file has besides its data, on its way to a copy of it.
//
// Between disks that keep it in the same places it is taken as it is, with what other programs have put there; between others it is said anew.
#pragma once

#include "standin/files/copy_sidecar.h"
#include "standin/files/references.h"

namespace standin
{

struct CopiedMetadata
{
    struct Attribute
    {
        std::string name;
        std::vector<std::uint8_t> value;
        bool isOurs;   // must come along; of others' each that the disk has room for
    };
    std::vector<Attribute> attributes;   // ours first
    Sidecar sidecar;
    bool hasSidecar = false;
    SidecarPlan plan;
};

// Reads all of it. `descriptor` is the source itself, opened for reading; none is needed for what can have no attributes.
// Result: noErr; afpAccessDenied for a sidecar that may not be read; the disk's code. What is damaged counts as not there, and stays behind.
OSErr readCopiedMetadata(const Object &source, int descriptor, const Volume &target, CopiedMetadata &metadata);

// Gives the attributes to the open copy. Result: 0 or a negative errno.
int writeAttributes(const CopiedMetadata &metadata, int copy);

}   // namespace standin
