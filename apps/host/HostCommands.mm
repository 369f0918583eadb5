#import "apps/host/Host.h"

#import "apps/host/LinkView.h"
#import "apps/support/window/MainThread.h"

#include "apps/host/LiveObjects.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace Tarvane
{
namespace
{

// One word, or several between double quotes; empty at the line's end.
std::string NextWord(std::istream& words)
{
    std::string strWord;
    words >> std::quoted(strWord);
    return strWord;
}

std::optional<double> Number(const std::string& strWord)
{
    std::istringstream text(strWord);
    text.imbue(std::locale::classic());
    double dNumber = 0;
    text >> dNumber;
    return text && text.eof() ? std::optional(dNumber) : std::nullopt;
}

} // namespace

void CHost::LineArrived(const std::string& strLine)
{
    Guarded([&] { Obey(strLine); });
}

void CHost::LinesEnded() { End(m_nExitCode); }

void CHost::Obey(const std::string& strLine)
{
    std::istringstream words(strLine);
    m_strCommand = NextWord(words);
    if (m_strCommand.empty())
    {
        return;
    }
    // Commands are done one after another, however long one takes.
    [m_commands hold];
    try
    {
        ObeyWords(words, m_strCommand);
    }
    catch (const std::exception& error)
    {
        m_fCapturingOnCommand = false;
        Refuse(error.what());
    }
    // An exception of the object system must not leave whoever gave the command without an answer.
    catch (...)
    {
        m_fCapturingOnCommand = false;
        Refuse("the view or its platform failed - see the standard error stream.");
    }
}

void CHost::ObeyWords(std::istream& words, const std::string& strCommand)
{
    if (strCommand == "capture")
    {
        CaptureOnCommand(words);
    }
    else if (strCommand == "track")
    {
        ChooseTrackOnCommand(words);
    }
    else if (strCommand == "open-menu")
    {
        m_pView->OpenMenu() ? Answer(State()) : Refuse("the view has no track menu.");
    }
    else if (strCommand == "screenshot")
    {
        PictureOnCommand(words);
    }
    else if (strCommand == "arm" || strCommand == "disarm")
    {
        ArmOnCommand(strCommand == "arm");
    }
    else if (strCommand == "state")
    {
        Answer(State());
    }
    else if (strCommand == "stalls")
    {
        m_options.fStalls ? Answer({{"stalls", m_stalls.Describe()}})
                          : Refuse("nothing is measured - start the host with --stalls.");
    }
    else if (strCommand == "objects")
    {
        m_options.fCountObjects ? Answer({{"objects", LiveObjects()}})
                                : Refuse("nothing is counted - start the host with "
                                         "--count-objects.");
    }
    else if (strCommand == "quit")
    {
        Answer(nlohmann::json::object());
        End(m_nExitCode);
    }
    else
    {
        Refuse("no such command - use capture FILE [SAMPLES], track N, open-menu, "
               "screenshot PATH, arm, disarm, state, stalls, objects or quit.");
    }
}

void CHost::CaptureOnCommand(std::istream& words)
{
    const std::string strFile = NextWord(words);
    const std::string strPosition = NextWord(words);
    const auto dPosition = strPosition.empty() ? std::optional(0.0) : Number(strPosition);
    if (strFile.empty() || !dPosition)
    {
        Refuse("say capture FILE, or capture FILE SAMPLES.");
        return;
    }
    if (m_plugIn->IsCapturing() || m_nTold < m_plugIn->CapturesBegun())
    {
        Refuse("a capture is under way - wait for its end, or disarm first.");
        return;
    }
    m_fCapturingOnCommand = true;
    Begin({strFile, *dPosition});
}

void CHost::ChooseTrackOnCommand(std::istream& words)
{
    const auto dTrack = Number(NextWord(words));
    if (!dTrack || !m_pView->ChooseTrack(static_cast<int>(*dTrack)))
    {
        Refuse("the track menu has no such item.");
        return;
    }
    Answer(State());
}

void CHost::PictureOnCommand(std::istream& words)
{
    const std::string strPath = NextWord(words);
    if (strPath.empty())
    {
        Refuse("say screenshot PATH.");
        return;
    }
    WriteFileAtomically(strPath, m_pView->Picture());
    Answer({{"path", strPath}});
}

void CHost::ArmOnCommand(bool fArm)
{
    if (m_plugIn->IsArmed() != fArm && !m_pView->PressToggle())
    {
        Refuse("the view has no capture toggle.");
        return;
    }
    // The view is told of the change through the main thread too; it comes first.
    CallOnMainThread(OnMain([this] { Answer(State()); }));
}

nlohmann::json CHost::State() const
{
    const ViewWords words = m_pView->Words();
    return {{"armed", m_plugIn->IsArmed()},
            {"tracks", m_pView->Tracks()},
            {"selected", m_pView->SelectedTrack()},
            {"message", words.strMessage},
            {"advice", words.strAdvice},
            {"waiting", m_plugIn->Waiting()},
            {"unreachable", m_plugIn->Unreachable()}};
}

void CHost::Answer(nlohmann::json answer)
{
    answer["command"] = m_strCommand;
    answer["ok"] = true;
    std::cout << JsonText(answer) << std::endl;
    [m_commands goOn];
}

void CHost::Refuse(const std::string& strReason)
{
    const nlohmann::json answer = {{"command", m_strCommand}, {"ok", false}, {"error", strReason}};
    std::cout << JsonText(answer) << std::endl;
    [m_commands goOn];
}

} // namespace Tarvane
