// A session that a test makes step by step, in memory.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <string>
#include <vector>

namespace TarvaneTest
{

/// In the middle of a command.
class CMadeSession : public Tarvane::Server::CSessionDatabase
{
public:
    CMadeSession(const std::vector<std::string>& trackNames, double dLinkOffset)
        : CSessionDatabase(Tarvane::Server::CSession(trackNames, dLinkOffset))
    {
        Begin();
    }

    Tarvane::Server::Document GetDocument(Tarvane::Server::DocumentKind kind)
    {
        return Content().GetDocument(kind);
    }
};

} // namespace TarvaneTest
