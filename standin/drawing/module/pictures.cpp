// PNG files from rows of pixels.
#include "standin/drawing/module/drawing_module.h"

#include <png.h>

namespace standin
{

std::vector<std::uint8_t> encodePicture(std::span<const std::uint8_t> rows, std::uint32_t width, std::uint32_t height)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;                                // a little larger, and most of the time of a picture is packing it
    std::vector<std::uint8_t> bytes(PNG_IMAGE_PNG_SIZE_MAX(image));   // room for all that it may take: none need be written twice
    png_alloc_size_t length = bytes.size();
    const int done = png_image_write_to_memory(&image, bytes.data(), &length, 0, rows.data(), 0, nullptr);
    bytes.resize(done != 0 ? length : 0);
    png_image_free(&image);
    return bytes;
}

}   // namespace standin
