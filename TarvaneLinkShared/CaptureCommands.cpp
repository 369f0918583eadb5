#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/ScriptComposer.h"
#include "TarvaneLinkShared/ScriptNumbers.h"
#include "TarvaneLinkShared/ScriptTexts.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

#include <Carbon/Carbon.h>

namespace
{
// The numbers of the mask's set bits, in rising order: 5 gives {0,2}. Empty for 0 and less.
std::string IndexList(int nIndexMask)
{
    if (nIndexMask <= 0)
        return {};

    std::string list = "{";
    for (int nBit = 0; (nIndexMask >> nBit) > 0; ++nBit)
    {
        if (((nIndexMask >> nBit) & 1) == 0)
            continue;
        list += std::to_string(nBit);
        if ((nIndexMask >> nBit) > 1)
            list += ",";
    }
    return list + "}";
}
} // namespace

bool CTarvaneScript::CheckDuplicateRegion(bool fAudioSuite, int nTrack, CFileName* pFile,
                                          double dPosition, double dStart, double dEnd)
{
    CScriptComposer script(fAudioSuite);
    script << "idTrack = GetTrackID(" << nTrack << ")\n";
    script << "nDuplicate = CheckForDuplicateRegion(idTrack, \"" << pFile->GetFullPathString()
           << "\"," << WholeSamples(dPosition) << "," << WholeSamples(dStart) << ","
           << WholeSamples(dEnd) << ")\n";
    script << "print(nDuplicate)\n";
    script << "end\n";

    CCommandResult result;
    const int status = SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout);
    if (status != noErr || LongFromText(result.Text()) != 1)
        return false;

    m_strLastError = strCapturedPreviously;
    m_strAdvice = strCaptureCancelled;
    // The capture ends here, and other commands may go out before the user is shown the words.
    m_fUserError = true;
    return true;
}

double CTarvaneScript::GetLinkSMPTEOffset(bool fAudioSuite)
{
    CScriptComposer script(fAudioSuite);
    script << "print(GetLinkSMPTEOffset())\n";
    script << "end\n";

    CCommandResult result;
    const int status = SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout);
    return status == noErr ? DoubleFromText(result.Text()) : 0.0;
}

int CTarvaneScript::SendFile(bool fAudioSuite, int nTrack, CFileName* pFile, double dPosition,
                             double dStart, double dEnd, int nIndexMask)
{
    m_fUserError = false;
    const std::string path = pFile->GetFullPathString();
    const std::string indexList = IndexList(nIndexMask);
    const long long nPosition = WholeSamples(dPosition);

    CScriptComposer script(fAudioSuite);
    script << "idTrack = GetTrackID(" << nTrack << ")\n";
    script << "AddAudioRegion(idTrack, \"" << path << "\", true, false, " << nPosition << ","
           << WholeSamples(dStart) << "," << WholeSamples(dEnd);
    if (!indexList.empty())
        script << ",1," << indexList;
    script << ")\n";
    // Six significant digits are what the server is sent here, and are not to be widened: a display
    // need not stand on the exact sample.
    script << "MoveDisplayToPosition(" << static_cast<double>(nPosition) + dStart << ")\n";
    script << "end\n";

    CCommandResult result;
    return SendCommand(script.Text().c_str(), result.Receive(), kAEDefaultTimeout);
}

long CTarvaneScript::GetUpdateCount()
{
    CCommandResult result;
    const int status = SendCommand(szUpdateCounter, result.Receive(), kAEDefaultTimeout);
    return status == noErr ? LongFromText(result.Text()) : 0;
}
