// Where the resource fork lies in a file's own bytes: all of it, or inside one of the forms in which forks travel. Bytes alone, no disk.
#pragma once

#include <cstdint>
#include <span>

namespace standin
{

// So much of a file's beginning is enough to tell.
constexpr std::size_t containerHeadSize = 1024;

enum class ResourceContainer
{
    bare,   // none of the others: what looks like none may still be no resource fork
    appleDouble,
    appleSingle,
    macBinary,
};

struct ResourcePlace
{
    ResourceContainer container = ResourceContainer::bare;
    std::uint64_t offset = 0, length = 0;   // of the fork, inside the file; a length of 0 where the container has none
    bool isDamaged = false;                 // the container contradicts itself or is cut off
};

// `head` is the beginning of the file: containerHeadSize bytes, or all if there are fewer.
ResourcePlace findResourcePlace(std::span<const std::uint8_t> head, std::uint64_t fileSize);

}   // namespace standin
