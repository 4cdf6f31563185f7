// Tests in rows: every row has a `name`, which becomes the name of its test.

#pragma once

#include <string>

inline constexpr auto rowName = [](const auto &row) { return std::string(row.param.name); };
