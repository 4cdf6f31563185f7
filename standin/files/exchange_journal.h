// The attribute that both files of an exchange get before the first step, bytes ↔ record, without any disk.
//
// It says which file it is, where the file comes from and where it goes, and which metadata the place has to which it goes: whoever changes such a file
// next finishes what was cut off, and whoever reads it meanwhile sees the right metadata.
#pragma once

#include "standin/files/attribute_format.h"

#include <string>
#include <vector>

namespace standin
{

constexpr const char *journalAttributeName = "user.zerb.exchange";

// What stays with a place when the file there is exchanged.
struct PlaceMetadata
{
    std::optional<SharedAttribute> shared;
    std::optional<OwnRecord> own;
};

struct ExchangePlace
{
    std::uint64_t folder = 0;   // its inode number
    std::uint64_t birth = 0;    // of the folder, packed as for a reference, or 0; kept of the place only to which a file goes
    std::string name;           // on disk
};

struct ExchangeJournal
{
    std::uint64_t file = 0, partner = 0;   // inode numbers
    ExchangePlace from, to;
    PlaceMetadata metadata;   // of `to`
};

// 80 bytes, big-endian: "ZEXC", version (1 byte, 1), flags (1: 0x01 the shared attribute is there, 0x02 our own record is), lengths of the two names (1 and 1),
// the inode numbers of file, partner, folder from, folder to, the birth of the latter (8 each), our own record (28), the length of what follows for the shared attribute (2), and 2
// reserved bytes. Then, of the shared attribute, what differs from an empty one: offset (2), length (1), bytes, again and again. Then the names from and to.
// What follows behind them is room that is kept free. Neither owner nor mode: who owns a file may write its attributes, and nobody may give files to others
// that way.
constexpr std::size_t journalHeaderSize = 80;
constexpr std::size_t roomForAttribute = 64;   // what a disk needs beside its value, at most
constexpr std::size_t largestJournal = 2048;

std::vector<std::uint8_t> buildJournal(const ExchangeJournal &journal);

// Nothing if it is no such record as a whole. A lock in it does not count: what is locked is not exchanged.
std::optional<ExchangeJournal> parseJournal(std::span<const std::uint8_t> bytes);

}   // namespace standin
