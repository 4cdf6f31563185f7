// What a catalogue record holds and Linux has no place for: where it is kept, read and written.
//
// One authority for each item, the other copies kept in line on writing and read where the authority has nothing:
//   Finder information            the shared attribute, then entry 9 of the sidecar
//   creation and backup date      our own attribute, then entry 8 of the shared one
//   encoding hint                 our own attribute
//   lock                          our own attribute, entry 14 of the shared one, entry 10 or 14 of the sidecar: locked if any of them says so
// Where an object can have no attributes (a disk without them, a link, a fifo, a device), the sidecar is the only place: entries 9, 8, 10 and our own record.
#pragma once

#include "platform/platform.h"
#include "standin/files/metadata_attributes.h"
#include "standin/files/references.h"

#include <functional>

namespace standin
{

enum MetadataPart : unsigned
{
    kFinderPart = 1,
    kDatesPart = 2,   // creation and backup
    kLockPart = 4,
    kHintPart = 8,
    kForkPart = 16,   // the resource fork's sizes; read only
    kEveryPart = 31,
    kBlankAccessPart = 32,   // of folders; read and changed by itself
};

struct Metadata
{
    FinderBytes finderInfo{};
    OwnRecord own;   // a date that is not set reads as the disk's own, or as never
    std::uint64_t forkLogicalSize = 0, forkPhysicalSize = 0;
};

// Reads the parts asked for; what is missing or damaged has its default. At most one call more for a part that an object does not have.
void readMetadata(const Object &object, unsigned parts, Metadata &metadata);

// Changes the parts given, through a descriptor of the object itself (O_PATH is enough). Nothing is written for what is as it was, and nothing for defaults
// that were never anything else. With the parent folder's lock held. Result: noErr or a code, and then each part is, but for copies, as it was or as
// wanted. What cannot be read is not written over.
// `change` is given what is there and turns it into what is wanted.
OSErr changeMetadata(const Object &object, int descriptor, unsigned parts, const std::function<void(Metadata &)> &change);

// When the object was made, as far as anybody knows: the date that was set, else its birth, else the earlier of its other dates.
UTCDateTime creationDateOf(const Object &object, const OwnRecord &own);

// What more than one question is answered from, read once: everything but the fork's sizes.
struct KnownMetadata
{
    Metadata all;
    Attributes attributes;
};
KnownMetadata readKnownMetadata(const Object &object);

// Result: noErr; fLckdErr if it is locked; the disk's code if that cannot be found out. A lock that may not be read is none.
OSErr checkNotLocked(const Object &object);
OSErr checkNotLocked(const KnownMetadata &known);

// --- exchanging; with the locks of both folders held ---

// What stays with the place where `object` is when it is exchanged and `successor` comes there. `room`: what the object's own
// attributes may still grow by when it is given the metadata of another place.
OSErr makePlaceMetadata(const Object &object, const KnownMetadata &known, const Object &successor, PlaceMetadata &metadata,
                        std::size_t &room);

// Whether a file with these attributes and without a sidecar would be changed by being given these metadata.
bool changesMetadata(const Attributes &attributes, const PlaceMetadata &metadata);

// A file has come to its place: it gets the place's metadata, and its journal goes. `before`: the attributes that it had, but for the journal.
// `descriptor` may be O_PATH, for all three.
OSErr giveMetadataOfPlace(const Object &object, int descriptor, const Attributes &before, const PlaceMetadata &metadata);

// The journal takes `room` bytes more than it needs, so that what giveMetadataOfPlace writes later fits in.
OSErr writeJournal(const Object &object, int descriptor, const ExchangeJournal &journal, std::size_t room);
OSErr removeJournal(const Object &object, int descriptor);

}   // namespace standin
