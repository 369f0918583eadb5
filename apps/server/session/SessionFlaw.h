// What can stand between a session file and the session in it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace Tarvane::Server
{

/// The text says what is wrong with what was read.
class CSessionFlaw : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Nothing is wrong with it, but only a later version of this program can read it.
class CSessionTooNew : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

inline void RequireVersion(std::int64_t nVersion, std::int64_t nKnown)
{
    const std::string strVersion = "its version is " + std::to_string(nVersion);
    if (nVersion > nKnown)
        throw CSessionTooNew(strVersion + "; this program reads " + std::to_string(nKnown));
    if (nVersion < nKnown)
        throw CSessionFlaw(strVersion + ", which never was one");
}

} // namespace Tarvane::Server
