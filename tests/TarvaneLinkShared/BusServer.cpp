// A server with the signature 'TkNe' that runs no scripts: it recognises a few and answers the rest
// with their own text.

#include "tests/TarvaneLinkShared/BusServer.h"
#include "tests/support/ScriptReceiver.h"

#include <string>

#include <unistd.h>

using namespace BusServer;
using namespace TarvaneTests;

namespace
{
OSErr Answer(const std::string& script, AppleEvent* pReply)
{
    if (script == szError)
    {
        PutText(pReply, 'Errr', szErrorText);
        return PutText(pReply, 'Rslt', "");
    }
    if (script == szSilent)
        return noErr;
    if (script == szRefuse)
        return kRefusal;
    if (script == szEnd)
        _exit(0);
    if (script == szSlow)
        usleep(500000);
    if (script.find("GetTrackName") != std::string::npos)
        return PutText(pReply, 'Rslt', "3\n1\nV\xC3\xB6x\nMic \xF0\x9F\x8E\x99\n");
    if (script.find("CheckForDuplicateRegion") != std::string::npos)
        return PutText(pReply, 'Rslt', "1\n");
    if (script.find("GetLinkSMPTEOffset") != std::string::npos)
        return PutText(pReply, 'Rslt', "-1.5\n");
    return PutText(pReply, 'Rslt', script);
}
} // namespace

int main()
{
    return ReceiveScripts(szReady, Answer);
}
