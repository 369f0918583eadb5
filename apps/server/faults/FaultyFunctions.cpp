#include "apps/server/faults/FaultyFunctions.h"

#include "apps/server/sound/Duplicates.h"
#include "apps/server/sound/SoundFiles.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Tarvane::Server
{

namespace
{

using Call = std::function<ScriptValue(const CScriptArguments&)>;

constexpr std::int32_t kOneRate = 48000;

bool Has(const FunctionFaults& faults, Fault fault)
{
    return faults.test(static_cast<std::size_t>(fault));
}

bool IsAscii(const std::string& strText)
{
    return std::all_of(strText.begin(), strText.end(), [](unsigned char c) { return c < 0x80; });
}

bool IsWide(int nForm)
{
    return nForm == SF_FORMAT_PCM_24 || nForm == SF_FORMAT_PCM_32;
}

bool IsFloat(int nForm)
{
    return nForm == SF_FORMAT_FLOAT || nForm == SF_FORMAT_DOUBLE;
}

void RefuseFile(const FunctionFaults& faults, const std::string& strPath)
{
    const auto refuse = [&](Fault fault, bool fMet)
    {
        if (fMet && Has(faults, fault))
            throw CScriptError(std::string("this refusal was planned: ") + NameOf(fault));
    };
    refuse(Fault::PathRefused, !IsAscii(strPath));
    const CSoundFile file(strPath);
    refuse(Fault::StereoRefused, file.Channels() > 1);
    refuse(Fault::WideRefused, IsWide(file.SampleForm()));
    refuse(Fault::FloatRefused, IsFloat(file.SampleForm()));
    refuse(Fault::RateRefused, file.SampleRate() != kOneRate);
}

ScriptValue AddRegion(CScriptContext& context, const FunctionFaults& faults,
                      const CScriptArguments& arguments, const Call& call)
{
    RefuseFile(faults, arguments.String(2));
    ScriptValue added = call(arguments);
    if (!Has(faults, Fault::RegionReplaced))
        return added;
    const std::int64_t nTrackId = arguments.Integer(1);
    CSessionDatabase& session = context.Session();
    // The new one is the last.
    while (session.RegionCount(nTrackId) > 1)
        session.DeleteRegion(session.RegionAt(nTrackId, 0));
    return added;
}

void TakeWholeFile(Region& region)
{
    region.nStart = 0;
    region.nEnd = CSoundFile(region.strPath).Frames();
}

// Looks in the session as the faults see it, for what they make of the captured region.
bool HasFaultyDuplicate(CScriptContext& context, Region captured, const FunctionFaults& faults)
{
    const CSession session = context.Session().Content();
    Document document = session.GetDocument(context.Selected());
    double dOffset = session.LinkOffset();
    if (Has(faults, Fault::OffsetAtOneRate))
        dOffset *= static_cast<double>(kOneRate) / captured.nSampleRate;
    if (Has(faults, Fault::DuplicateWholeFile))
        TakeWholeFile(captured);
    for (Region& region : document.regions)
    {
        if (Has(faults, Fault::DuplicateAnyTrack))
            region.nTrackId = captured.nTrackId;
        if (Has(faults, Fault::DuplicateWholeFile))
            TakeWholeFile(region);
    }
    if (Has(faults, Fault::DuplicateByPath))
        std::erase_if(document.regions,
                      [&](const Region& region) { return region.strPath != captured.strPath; });
    document.nSelectedRegionId = kNullId;
    document.processes.clear();
    CSessionDatabase seen(CSession::Restore({std::move(document), Document()}, dOffset,
                                            session.UpdateCount(), session.NextId()));
    return HasDuplicate(seen, captured);
}

ScriptValue CheckForDuplicate(CScriptContext& context, const FunctionFaults& faults,
                              const CScriptArguments& arguments, const Call& call)
{
    const std::string strPath = arguments.String(2);
    RefuseFile(faults, strPath);
    call(arguments); // for its refusals
    Region captured;
    captured.nTrackId = arguments.Integer(1);
    captured.strPath = strPath;
    captured.nPosition = arguments.Integer(3);
    captured.nStart = arguments.Integer(4);
    captured.nEnd = arguments.Integer(5);
    captured.nSampleRate = CSoundFile(strPath).SampleRate();
    return std::int64_t(HasFaultyDuplicate(context, captured, faults) ? 1 : 0);
}

} // namespace

FunctionFaults FaultsOfFunctions(const FaultSet& faults)
{
    FunctionFaults chosen;
    for (const Fault fault : faults)
        if (fault >= Fault::RegionReplaced)
            chosen.set(static_cast<std::size_t>(fault));
    return chosen;
}

void MisbehaveInFunctions(std::vector<ScriptFunction>& functions, CScriptContext& context,
                          const FunctionFaults& faults)
{
    if (faults.none())
        return;
    for (ScriptFunction& function : functions)
    {
        const Call call = function.call;
        if (function.strName == "AddAudioRegion")
            function.call = [=, &context](const CScriptArguments& arguments)
            { return AddRegion(context, faults, arguments, call); };
        if (function.strName == "CheckForDuplicateRegion")
            function.call = [=, &context](const CScriptArguments& arguments)
            { return CheckForDuplicate(context, faults, arguments, call); };
    }
}

} // namespace Tarvane::Server
