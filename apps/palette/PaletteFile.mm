#include "apps/palette/PaletteFile.h"

#include "apps/support/program/CommandLine.h"
#include "colours/ComponentsColors.h"
#include "colours/GradientFill.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#include <cmath>
#include <functional>
#include <memory>
#include <stdexcept>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

// The key under which a gradient keeps each of its stops.
constexpr const char* szGradientComponent = "GradColor";

struct SpaceReleaser
{
    void operator()(CGColorSpaceRef space) const { CGColorSpaceRelease(space); }
};
using OwnedSpace = std::unique_ptr<CGColorSpace, SpaceReleaser>;

void ForEachBlock(CParameterBlock& block, const char* szName,
                  const std::function<void(CParameterBlock&)>& fnWork)
{
    CParameterBlock* pFound = nullptr;
    CParameterBlock::iterator position;
    bool fMore = block.FindFirstParameter(szName, &pFound, &position);
    while (fMore)
    {
        fnWork(*pFound);
        fMore = block.FindNextParameter(szName, &pFound, &position);
    }
}

bool IsFinite(const CComponentColour& colour)
{
    return std::isfinite(colour.m_dRed) && std::isfinite(colour.m_dGreen) &&
           std::isfinite(colour.m_dBlue) && std::isfinite(colour.m_dAlpha);
}

// A gradient leaves out stops that it cannot read, or whose place is taken, and does not tell.
bool HasAllStops(const CGradientFill& fill, CParameterBlock& block)
{
    size_t nStops = 0;
    ForEachBlock(block, szGradientComponent, [&](CParameterBlock&) { ++nStops; });
    bool fFinite = true;
    for (const CGradComponent* pStop : fill.m_Stops)
    {
        fFinite = fFinite && IsFinite(*pStop) && std::isfinite(pStop->m_fPosition);
    }
    return fFinite && fill.m_Stops.size() == nStops;
}

// The palette tells of its last entry only, so each is loaded alone.
bool IsSound(CParameterBlock& block, CGColorSpaceRef space)
{
    CParameterBlock list;
    list.AddParameter(CComponentColour::szComponent, &block);
    CParameterBlock session;
    session.AddParameter(CComponentColour::szComponents, &list);
    CComponentsColors table;
    if (!table.Load(&session, space))
    {
        return false;
    }
    const CComponentColour* pEntry = table.m_Map.begin()->second;
    const auto* pFill = dynamic_cast<const CGradientFill*>(pEntry);
    return pFill != nullptr ? HasAllStops(*pFill, block) : IsFinite(*pEntry);
}

void CheckEntries(CParameterBlock& list, CGColorSpaceRef space, const fs::path& path)
{
    int nEntry = 0;
    ForEachBlock(list, CComponentColour::szComponent,
                 [&](CParameterBlock& block)
                 {
                     ++nEntry;
                     if (IsSound(block, space))
                     {
                         return;
                     }
                     std::string strName;
                     block.FindParameter(CComponentColour::szName, &strName, "without a name");
                     throw CUsageError("entry " + std::to_string(nEntry) + " (" + strName +
                                       ") of the palette " + path.string() +
                                       " cannot be read - store the palette again, or name "
                                       "another file.");
                 });
}

void ReadSession(CParameterBlock& session, const fs::path& path)
{
    std::error_code error;
    if (!fs::is_regular_file(path, error))
    {
        throw CUsageError("there is no file " + path.string() + " - name a palette with --load.");
    }
    CFileName name(path.c_str());
    if (session.LoadBinarySession(&name) != CParameterBlock::kSessionDone)
    {
        throw CUsageError("the file " + path.string() +
                          " cannot be read, or is no whole session - name a palette that --store "
                          "has written.");
    }
}

bool HoldsSame(const CParameterBlock& a, const CParameterBlock& b)
{
    const auto flat = [](const CParameterBlock& block)
    {
        unsigned long nSize = 0;
        const std::unique_ptr<unsigned char[]> pBytes(block.CreateBlock(&nSize));
        return std::string(reinterpret_cast<const char*>(pBytes.get()), nSize);
    };
    return flat(a) == flat(b);
}

[[noreturn]] void CannotStore(const fs::path& path, const std::string& strReason)
{
    throw std::runtime_error("cannot write the palette " + path.string() + " (" + strReason +
                             ") - name another file with --store.");
}

} // namespace

void LoadPalette(const fs::path& path)
{
    CParameterBlock session;
    ReadSession(session, path);
    CParameterBlock* pList = nullptr;
    if (!session.FindParameter(CComponentColour::szComponents, &pList))
    {
        throw CUsageError("the session " + path.string() +
                          " holds no palette - name one that --store has written.");
    }
    const OwnedSpace space(CGColorSpaceCreateDeviceRGB());
    CheckEntries(*pList, space.get(), path);
    gAppColours.Load(&session, space.get());
}

void StorePalette(const fs::path& path)
{
    std::error_code error;
    // Of a link the file that it leads to is replaced, not the link.
    const fs::path file = fs::weakly_canonical(fs::absolute(path), error);
    if (error || fs::is_directory(file, error))
    {
        CannotStore(path, error ? error.message() : "this is a folder");
    }
    fs::path neighbour = file;
    neighbour += ".storing";

    CParameterBlock session;
    gAppColours.Save(&session);
    CFileName name(neighbour.c_str());
    CParameterBlock back;
    // A disk that is full shows in what is read back, and only there.
    const bool fWritten = session.SaveBinarySession(&name) == CParameterBlock::kSessionDone &&
                          back.LoadBinarySession(&name) == CParameterBlock::kSessionDone &&
                          HoldsSame(session, back);
    if (fWritten)
    {
        fs::rename(neighbour, file, error);
    }
    if (!fWritten || error)
    {
        std::error_code ignored;
        fs::remove(neighbour, ignored);
        CannotStore(path, error ? error.message() : "the folder or the disk does not take it");
    }
}

} // namespace Tarvane
