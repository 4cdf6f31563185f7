// Text in the system's encoding, as bytes and as length-prefixed strings.
#pragma once

#include "platform/types.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace standin
{

// A text as a Str255, of which the first 255 bytes count.
class PascalText
{
public:
    explicit PascalText(const std::string &text)
    {
        bytes_[0] = static_cast<UInt8>(std::min<std::size_t>(text.size(), 255));
        std::memcpy(bytes_ + 1, text.data(), bytes_[0]);
    }
    ConstStr255Param bytes() const { return bytes_; }
    void copyTo(Str255 text) const { std::memcpy(text, bytes_, bytes_[0] + 1u); }

private:
    Str255 bytes_;
};

inline std::string textOf(ConstStr255Param text)   // empty for null
{
    return text != nullptr ? std::string(reinterpret_cast<const char *>(text + 1), text[0]) : std::string();
}

// In UTF-8, as a screen's titles are; of the first 255 bytes.
std::string utf8Of(const std::string &text);

}   // namespace standin
