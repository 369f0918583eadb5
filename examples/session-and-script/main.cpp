// Asks a server for its tracks, writes them into a session file, and reads the file back.
//   session-and-script FILE
// Exit codes: 0 done, 1 no server answers, 2 the file cannot be used.
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"
#include "utils/ParameterBlock.h"

#include <iostream>
#include <string>
#include <vector>

namespace
{

int Complain(const std::string& strWhat, int nExitCode)
{
    std::cerr << "session-and-script: " << strWhat << std::endl;
    return nExitCode;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        return Complain("name the session file to write", 2);
    }

    CTarvaneScript script;
    std::vector<std::string> tracks;
    if (!script.ListTracks(false, &tracks))
    {
        return Complain(script.m_strLastError + " " + script.m_strAdvice, 1);
    }

    CParameterBlock written;
    for (const std::string& strTrack : tracks)
    {
        CParameterBlock track;
        track.AddParameter("Name", strTrack.c_str());
        written.AddParameter("Track", &track);
    }
    CFileName file(argv[1]);
    if (!tracks.empty() && written.SaveBinarySession(&file) != CParameterBlock::kSessionDone)
    {
        return Complain("cannot write the session", 2);
    }

    CParameterBlock read;
    if (read.LoadBinarySession(&file) != CParameterBlock::kSessionDone)
    {
        return Complain("cannot read the session", 2);
    }
    CParameterBlock* pTrack = nullptr;
    CParameterBlock::iterator place;
    for (bool fFound = read.FindFirstParameter("Track", &pTrack, &place); fFound;
         fFound = read.FindNextParameter("Track", &pTrack, &place))
    {
        std::string strName;
        pTrack->FindParameter("Name", &strName, "");
        std::cout << strName << "\n";
    }
    return 0;
}
