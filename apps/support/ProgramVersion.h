// Which version of Tarvane Link this program is of.
#pragma once

namespace Tarvane
{

// "1.2.3".
const char* ProgramVersion();

} // namespace Tarvane
