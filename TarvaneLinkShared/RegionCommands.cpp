#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/ScriptNumbers.h"
#include "TarvaneLinkShared/ScriptTexts.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

#include <Carbon/Carbon.h>

namespace
{
constexpr long kNoSampleRate = -1;
}

// Puts the status with which a script ended early into words. A number that no script prints
// leaves the messages alone.
void CTarvaneScript::TellMissing(const std::string& strStatus)
{
    switch (IntFromText(strStatus.c_str()))
    {
    case 0:
        m_strLastError = strNoSession;
        break;
    case 1:
        m_strLastError = strNoRegion;
        break;
    case 2:
        m_strLastError = strNoProcess;
        break;
    }
}

bool CTarvaneScript::ExportSelectedRegion(bool fAudioSuite, long, CFileName* pFile)
{
    m_fUserError = false;
    m_strSelectedRegion1.clear();
    m_strSelectedRegion2.clear();

    CCommandResult result;
    if (SendCommand(fAudioSuite ? szASExportLastProcess : szExportSelectedRegion, result.Receive(),
                    kAEDefaultTimeout) != noErr)
        return false;

    std::vector<std::string> items;
    SplitResult(result.Text(), &items);
    if (items.size() == 1)
        TellMissing(items[0]);
    if (items.size() != 2)
        return false;

    *pFile = CFileName(items[1].c_str());
    m_strSelectedRegion2 = "File: " + pFile->GetFullPathString();
    return true;
}

bool CTarvaneScript::RenderSelectedRegion(bool fAudioSuite, long nSampleRate, long long* pStart,
                                          long long* pEnd)
{
    m_fUserError = false;
    CCommandResult result;
    const int status = SendCommand(fAudioSuite ? szASRenderLastProcess : szRenderSelectedRegion,
                                   result.Receive(), kAEDefaultTimeout);
    // After the command here, before it in the export: the difference is kept.
    m_strSelectedRegion1.clear();
    m_strSelectedRegion2.clear();
    if (status != noErr)
        return false;

    std::vector<std::string> items;
    SplitResult(result.Text(), &items);
    if (items.size() == 1)
        TellMissing(items[0]);
    if (items.size() != 4)
        return false;

    const long nServerRate = LongFromText(items[1].c_str());
    *pStart = LongLongFromText(items[2].c_str());
    *pEnd = LongLongFromText(items[3].c_str());
    m_strSelectedRegion1 = "Start: " + std::to_string(*pStart) + " End: " + std::to_string(*pEnd) +
                           " Sample Rate: " + std::to_string(nServerRate);
    if (nSampleRate != kNoSampleRate && nServerRate != nSampleRate)
        m_strLastError = "Warning - Session Sample Rate is: " + std::to_string(nSampleRate) +
                         " Tarvane Sample rate is: " + std::to_string(nServerRate);
    return true;
}
