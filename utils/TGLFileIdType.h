#pragma once

#include <cstdint>

namespace TGL
{
/// Identifies a file; a plain value, passed by value. Both fields -1 mean no file. Nobody
/// interprets the fields: they are carried, compared and stored as they are.
struct FileIdType
{
    std::int64_t nFileKey;
    long nFileSub; ///< As wide as the host's long, in memory and in a flat block alike.
};
} // namespace TGL
