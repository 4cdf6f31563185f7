// The sample files of this folder, for tests. README.md says where they come from and what is in them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// The repository's root, found from where this header was compiled.
inline std::filesystem::path repositoryRoot()
{
    return std::filesystem::path(__FILE__).parent_path().parent_path().parent_path();
}

// Where this was compiled may be known only from the build folder, which tests need not run in: who is told the whole path takes that.
inline std::filesystem::path samplePath(const std::string &name)
{
#ifdef ZERB_TEST_DATA
    return std::filesystem::path(ZERB_TEST_DATA) / name;
#else
    return repositoryRoot() / "tests/data" / name;
#endif
}

// All bytes of a file; none if it cannot be read.
inline std::vector<std::uint8_t> readWholeFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file), {});
}

inline std::vector<std::uint8_t> readSample(const std::string &name)
{
    return readWholeFile(samplePath(name));
}
