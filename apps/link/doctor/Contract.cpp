#include "apps/link/doctor/Contract.h"

namespace Tarvane::Link
{

const std::vector<ContractFunction>& ContractFunctions()
{
    static const std::vector<ContractFunction> functions{
        {"SelectScriptDocument", "every command without --audio-suite", true},
        {"SelectAudioSuiteDocument", "every command with --audio-suite", false},
        {"GetTrackCount", "tracks", true},
        {"GetTrackID", "tracks, send, duplicate, align, spread, clear", true},
        {"GetTrackName", "tracks", true},
        {"CheckForDuplicateRegion", "duplicate", true},
        {"GetLinkSMPTEOffset", "offset", true},
        {"AddAudioRegion", "send", true},
        {"MoveDisplayToPosition", "send, align, spread", true},
        {"GetUpdateCount", "updates, watch", false},
        {"GetSelectedRegionID", "export, render", false},
        {"IsNullRegionID", "export, render", false},
        {"ExportRegion", "export", false},
        {"GetSampleRate", "render", false},
        {"RegionRender", "render", false},
        {"GetRegionStartPosition", "render", false},
        {"GetRegionEndPosition", "render", false},
        {"FindLastProcessCreated", "export and render with --audio-suite", false},
        {"IsNullProcessID", "export and render with --audio-suite", false},
        {"SelectProcess", "export and render with --audio-suite", false},
        {"CreateProcess", "align, spread", false},
        {"GetMarkerTrackID", "clear", false},
        {"CountMarkerAreas", "clear", false},
        {"GetMarkerAreaID", "clear", false},
        {"DeleteMarkerArea", "clear", false},
        {"GetRegionCount", "clear", false},
        {"GetRegionID", "clear", false},
        {"DeleteRegion", "clear", false},
    };
    return functions;
}

} // namespace Tarvane::Link
