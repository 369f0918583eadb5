#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/ScriptComposer.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <Carbon/Carbon.h>

bool CTarvaneScript::CreateGDX(bool fAudioSuite, int nGuideTrack, long long nGuideStart,
                               long long nGuideEnd, int nDubTrack, long long nDubStart,
                               long long nDubEnd, int nAlignedTrack)
{
    m_fUserError = false;
    CScriptComposer script(fAudioSuite);
    script << "idGuide = GetTrackID(" << nGuideTrack << ")\n";
    script << "idDub = GetTrackID(" << nDubTrack << ")\n";
    script << "idAligned = GetTrackID(" << nAlignedTrack << ")\n";
    script << "Guide = { IOType=1, Track=idGuide, Start=" << nGuideStart << ", End=" << nGuideEnd
           << "}\n";
    script << "Dub = { IOType=2, Track=idDub, Start=" << nDubStart << ", End=" << nDubEnd << "}\n";
    script << "Inputs = { Guide, Dub }\n";
    script << "Aligned = { Track=idAligned }\n";
    script << "Outputs = { Aligned }\n";
    script << "idProcess = CreateProcess(\"GDX\", \"PT\", Inputs, Outputs)\n";
    script << "MoveDisplayToPosition(" << nGuideStart << ")\n";
    script << "end\n";

    CCommandResult result;
    return SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout) == noErr;
}

bool CTarvaneScript::CreateSpreader(bool fAudioSuite, int nInputTrack, long long nStart,
                                    long long nEnd, int, int nOutputTrack)
{
    m_fUserError = false;
    CScriptComposer script(fAudioSuite);
    script << "idInput = GetTrackID(" << nInputTrack << ")\n";
    script << "idOutput = GetTrackID(" << nOutputTrack << ")\n";
    script << "Input = { IOType=1, Track=idInput, Start=" << nStart << ", End=" << nEnd << "}\n";
    script << "Inputs = { Input }\n";
    script << "Output = { Track=idOutput }\n";
    script << "Outputs = { Output }\n";
    script << "idProcess = CreateProcess(\"Spreader\", \"PT\", Inputs, Outputs)\n";
    script << "MoveDisplayToPosition(" << nStart << ")\n";
    script << "end\n";

    CCommandResult result;
    return SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout) == noErr;
}

void CTarvaneScript::ClearTrack(bool fAudioSuite, int nTrack)
{
    // The server renumbers after each deletion, so the first one goes until none is left.
    CScriptComposer script(fAudioSuite);
    script << "idTrack = GetTrackID(" << nTrack << ")\n";
    script << "idMarker = GetMarkerTrackID(idTrack, 0)\n";
    script << "while CountMarkerAreas(idMarker) > 0 do\n";
    script << "idSrcArea = GetMarkerAreaID(idMarker, 0)\n";
    script << "DeleteMarkerArea(idSrcArea)\n";
    script << "end\n";
    script << "while GetRegionCount(idTrack) > 0 do\n";
    script << "idRegion = GetRegionID(idTrack, 0)\n";
    script << "DeleteRegion(idRegion)\n";
    script << "end\n";
    script << "end\n";

    CCommandResult result;
    SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout);
}
