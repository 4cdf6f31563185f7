// Ports as PNG files.
#include "standin/drawing/loaded_module.h"
#include "standin/drawing/port.h"
#include "standin/files/errors.h"
#include "standin/files/linux_calls.h"
#include "standin/files/temporary_files.h"
#include "standin/screen.h"

#include <new>

namespace standin
{

namespace
{

constexpr std::int64_t mostPixels = 64'000'000;

struct Place
{
    std::string folder, name;
};

Place placeOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return {".", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

bool canBeFile(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." && name.find('\0') == std::string::npos;
}

void appendEnlarged(std::vector<std::uint8_t> &rows, const Pixel *pixels, int width, int scale)
{
    const std::size_t start = rows.size();
    for (int column = 0; column < width; ++column)
        for (int copy = 0; copy < scale; ++copy)
            for (int shift : {16, 8, 0})
                rows.push_back(static_cast<std::uint8_t>(pixels[column] >> shift));
    const std::vector<std::uint8_t> row(rows.begin() + static_cast<std::ptrdiff_t>(start), rows.end());
    for (int copy = 1; copy < scale; ++copy)
        rows.insert(rows.end(), row.begin(), row.end());
}

std::vector<std::uint8_t> encoded(const DrawingModule &module, const OpaqueGrafPtr &port, int scale)
{
    const int width = port.bounds.right - port.bounds.left, height = port.bounds.bottom - port.bounds.top;
    const auto wideScaled = static_cast<std::size_t>(width) * static_cast<std::size_t>(scale);
    std::vector<std::uint8_t> rows;
    rows.reserve(3 * wideScaled * static_cast<std::size_t>(height) * static_cast<std::size_t>(scale));
    for (int row = 0; row < height; ++row)
        appendEnlarged(rows, port.pixels.data() + static_cast<std::ptrdiff_t>(row) * width, width, scale);
    return module.encodePicture(rows, static_cast<std::uint32_t>(wideScaled), static_cast<std::uint32_t>(height * scale));
}

// 0 or a negative errno.
int writeFile(const Place &place, const std::vector<std::uint8_t> &bytes)
{
    const Descriptor folder(linux_calls::openAbsoluteFolder(place.folder.c_str()));   // or from the current directory
    if (!folder.isOpen())
        return folder.number();
    TemporaryFile file;
    int result = file.make(folder.number(), 0644);
    if (result == 0)
        result = linux_calls::writeAt(file.descriptor(), bytes, 0);
    return result == 0 ? file.replace(place.name.c_str()) : result;
}

bool fits(const OpaqueGrafPtr &port, int scale)
{
    return scale >= 1 && scale <= mostPixels && static_cast<std::int64_t>(port.pixels.size()) * scale <= mostPixels / scale;
}

}   // namespace

OSErr savePicture(GrafPtr port, const std::string &path, int scale)
try
{
    const Place place = placeOf(path);
    if (port == nullptr || !canBeFile(place.name) || !fits(*port, scale))
        return paramErr;
    const DrawingModule *module = loadedModule();
    if (module == nullptr)
        return ioErr;
    const std::vector<std::uint8_t> bytes = encoded(*module, *port, scale);
    return bytes.empty() ? static_cast<OSErr>(memFullErr) : resultFromErrno(-writeFile(place, bytes));
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

}   // namespace standin
