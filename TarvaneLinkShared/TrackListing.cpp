#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/ScriptTexts.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <Carbon/Carbon.h>

bool CTarvaneScript::ListTracks(bool fAudioSuite, std::vector<std::string>* pstrTracks)
{
    const std::size_t nBefore = pstrTracks->size();
    ListTracksWithTimeout(fAudioSuite, pstrTracks, kAEDefaultTimeout);
    return pstrTracks->size() > nBefore;
}

int CTarvaneScript::ListTracksWithTimeout(bool fAudioSuite, std::vector<std::string>* pstrTracks,
                                          int nTimeoutTicks)
{
    CCommandResult result;
    const int status =
        SendCommand(fAudioSuite ? szASListTracks : szListTracks, result.Receive(), nTimeoutTicks);
    if (status != noErr)
        return status;

    // The first item is the status. It is not looked at: a document without tracks and no document
    // at all both list nothing, and are told in the same words.
    std::vector<std::string> items;
    SplitResult(result.Text(), &items);
    if (items.size() >= 2)
        pstrTracks->insert(pstrTracks->end(), items.begin() + 1, items.end());
    else
        m_strLastError = strNoSession;
    return status;
}
