#include "tests/controls/PaletteLookUps.h"

#include "colours/ComponentsColors.h"
#include "tests/support/RecordingCoreGraphics.h"

#include <string>

namespace
{

bool fNoting = false;

void Note(const char* szOperation, CComponentCode code)
{
    if (fNoting)
        TarvaneTests::NoteGraphicsCall(std::string(szOperation) + " " +
                                       std::to_string(code.m_nModule) + "/" +
                                       std::to_string(code.m_nComponent));
}

} // namespace

namespace TarvaneTests
{

NotedLookUps::NotedLookUps() { fNoting = true; }

NotedLookUps::~NotedLookUps() { fNoting = false; }

} // namespace TarvaneTests

// Linked in the place of the palette's operations, whose names have "real" instead of "wrap".
#define OPERATION(prefix, name) prefix##_ZN17CComponentsColors##name##E14CComponentCode

extern "C"
{
    CComponentColour* OPERATION(__real_, 4Find)(CComponentsColors*, CComponentCode);
    CComponentColour* OPERATION(__wrap_, 4Find)(CComponentsColors* pTable, CComponentCode code)
    {
        Note("Find", code);
        return OPERATION(__real_, 4Find)(pTable, code);
    }

    bool OPERATION(__real_, 10IsGradient)(CComponentsColors*, CComponentCode);
    bool OPERATION(__wrap_, 10IsGradient)(CComponentsColors* pTable, CComponentCode code)
    {
        Note("IsGradient", code);
        return OPERATION(__real_, 10IsGradient)(pTable, code);
    }

    CGColorRef OPERATION(__real_, 14FindCGColorRef)(CComponentsColors*, CComponentCode);
    CGColorRef OPERATION(__wrap_, 14FindCGColorRef)(CComponentsColors* pTable, CComponentCode code)
    {
        Note("FindCGColorRef", code);
        return OPERATION(__real_, 14FindCGColorRef)(pTable, code);
    }
}
