#include "apps/editor/SessionModel.h"

#include "apps/editor/Editor.h"
#include "utils/ParameterBlock.h"

#include <filesystem>
#include <map>

namespace Tarvane::Editor
{

namespace
{

constexpr const char* szSessionForm = "Tarvane Link session";
constexpr const char* szScriptDocument = "script";

template <typename T> T ValueOf(CParameterBlock& block, const char* szName)
{
    T value{};
    if (!block.FindParameter(szName, &value, T{}))
        throw CEditorError("the session is damaged: a block \"" + block.m_strName.str() +
                           "\" has no value \"" + szName + "\".");
    return value;
}

std::string TextOf(CParameterBlock& block, const char* szName)
{
    std::string strText;
    if (!block.FindParameter(szName, &strText, ""))
        throw CEditorError("the session is damaged: a block \"" + block.m_strName.str() +
                           "\" has no text \"" + szName + "\".");
    return strText;
}

CParameterBlock& BlockOf(CParameterBlock& block, const char* szName)
{
    CParameterBlock* pBlock = nullptr;
    if (!block.FindParameter(szName, &pBlock))
        throw CEditorError("the session is damaged: it has no block \"" + std::string(szName) +
                           "\".");
    return *pBlock;
}

template <typename Each> void ForEach(CParameterBlock& block, const char* szName, const Each& each)
{
    CParameterBlock* pNested = nullptr;
    CParameterBlock::iterator it;
    for (bool fFound = block.FindFirstParameter(szName, &pNested, &it); fFound;
         fFound = block.FindNextParameter(szName, &pNested, &it))
        each(*pNested);
}

Region ReadRegionOf(CParameterBlock& block)
{
    Region region;
    region.nId = ValueOf<long long>(block, "Id");
    region.strFile = TextOf(block, "File");
    region.strName = std::filesystem::path(region.strFile).stem().string();
    region.nStart = ValueOf<long long>(block, "Start");
    region.nLength = ValueOf<long long>(block, "End") - region.nStart;
    // There it is the place of the file's first sample.
    region.nPosition = ValueOf<long long>(block, "Position") + region.nStart;
    region.nRate = ValueOf<int>(block, "SampleRate");
    region.fMuted = ValueOf<bool>(block, "Muted");
    for (const auto& pChannel : BlockOf(block, "Channels").m_vParameters)
    {
        if (pChannel->m_nType == CIntParameter::kType)
            region.channels.push_back(static_cast<const CIntParameter&>(*pChannel).m_nValue);
    }
    return region;
}

} // namespace

Model ReadModel(CParameterBlock& root)
{
    if (root.m_strName.str() != szSessionForm)
        throw CEditorError("this is no session of tracks and regions: its tree is called \"" +
                           root.m_strName.str() + "\" and not \"" + szSessionForm + "\".");
    CParameterBlock& document = BlockOf(root, szScriptDocument);
    Model model;
    std::map<long long, std::size_t> places;
    ForEach(document, "Track",
            [&](CParameterBlock& block)
            {
                places[ValueOf<long long>(block, "Id")] = model.tracks.size();
                model.tracks.push_back({TextOf(block, "Name"), {}});
            });
    ForEach(document, "Region",
            [&](CParameterBlock& block)
            {
                const auto place = places.find(ValueOf<long long>(block, "Track"));
                if (place == places.end())
                    throw CEditorError("the session is damaged: a region is on no track.");
                model.tracks[place->second].regions.push_back(ReadRegionOf(block));
            });
    return model;
}

} // namespace Tarvane::Editor
