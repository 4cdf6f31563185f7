// From a directory to a volume, and what the environment says of volumes.
#pragma once

#include "standin/files/volumes.h"

#include <memory>
#include <string>
#include <vector>

namespace standin
{

constexpr std::size_t longestVolumeName = 27;

// Opens a directory as a volume, which then lacks only its number and name. Result: noErr; dirNFErr; errFSNotAFolder.
OSErr openVolume(const std::string &directory, VolumeKind kind, const VolumeOptions &options, std::shared_ptr<Volume> &volume);

// The last part of where it lies, or `Linux` for the root of everything.
std::string usualName(const Volume &volume);

// Whether a text can be a volume's name.
bool isVolumeName(std::string_view name);

struct WantedVolume
{
    std::string entry;   // as it was written
    std::string name, directory;
    VolumeOptions options;
};

// ZERB_STARTUP_VOLUME. Its directory is "/" if the variable is not set.
WantedVolume wantedStartupVolume();

// ZERB_VOLUMES. An entry without a name or directory has an empty one.
std::vector<WantedVolume> wantedFurtherVolumes();

}   // namespace standin
