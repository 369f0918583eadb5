#include "apps/support/program/ProgramVersion.h"

#include "ProgramCommit.h"

namespace Tarvane
{

const char* ProgramVersion()
{
    return TARVANE_VERSION;
}

const char* ProgramCommit()
{
    return kProgramCommit;
}

} // namespace Tarvane
