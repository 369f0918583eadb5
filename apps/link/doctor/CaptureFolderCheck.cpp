#include "apps/link/doctor/CaptureFolderCheck.h"

#include "apps/link/doctor/ProbeSound.h"
#include "apps/link/shared/SendableText.h"
#include "apps/support/program/CommandLine.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace Tarvane::Link
{

namespace
{

constexpr char szCheck[] = "capture-folder";

std::string FullPathOf(const std::string& strFolder)
{
    std::error_code ignored;
    if (!fs::is_directory(strFolder, ignored))
        throw CUsageError("there is no folder " + strFolder +
                          "; name the one that captures are written to.");
    return QuotablePath(strFolder);
}

bool HasTrack(const CExaminer& examiner)
{
    const auto reply = examiner.AskDocument("GetTrackCount() > 0");
    return reply.Is("true");
}

Finding Judge(const CExaminer& examiner, const std::string& strFolder, CProbeSound& sound)
{
    const auto present = examiner.AskDuplicate(sound.Path(), CProbeSound::kFrames);
    if (!present.Answered())
        return NoReplyFinding(szCheck, present);
    if (present.outcome == Outcome::ServerError)
        return Seen(
            {szCheck, Verdict::Problem,
             "the server cannot read a sound file in " + strFolder + ": " + present.strMessage,
             "Let the server's user read that folder, or have captures written to another one; "
             "on two machines it must have one path on both.",
             Outcome::ServerError},
            present);

    sound.Remove();
    const auto absent = examiner.AskDuplicate(sound.Path(), CProbeSound::kFrames);
    if (!absent.Answered())
        return NoReplyFinding(szCheck, absent);
    if (absent.outcome == Outcome::ServerError)
        return {szCheck, Verdict::Good, "the server reads sound files in " + strFolder};
    return {szCheck, Verdict::Unknown,
            "the server does not say whether it can read " + strFolder +
                ": it does not miss a file that is not there",
            "Capture something, and see whether it can be played in the server."};
}

} // namespace

Finding CheckCaptureFolder(const CExaminer& examiner)
{
    if (examiner.GetOptions().strCaptureFolder.empty())
        return {szCheck, Verdict::Unknown, "which folder captures are written to is not known",
                "Name it with --capture-folder."};
    const std::string strFolder = FullPathOf(examiner.GetOptions().strCaptureFolder);
    if (!HasTrack(examiner))
        return {szCheck, Verdict::Unknown, "without a track the server cannot be asked",
                "Open a session with a track in the server."};
    try
    {
        CProbeSound sound(strFolder);
        return Judge(examiner, strFolder, sound);
    }
    catch (const std::runtime_error& error)
    {
        return {szCheck, Verdict::Problem, error.what(),
                "Give this user the right to write there, or free space.", Outcome::ServerError};
    }
}

} // namespace Tarvane::Link
