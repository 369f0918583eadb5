// Session files as tarvane-server writes them.
#pragma once

#include "tests/utils/ParameterHelpers.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TarvaneTest
{

class CServerSession
{
public:
    CServerSession()
    {
        m_root.m_strName = "Tarvane Link session";
        m_root.AddParameter("Version", 2);
    }

    void AddTrack(long long nId, const std::string& strName)
    {
        CParameterBlock track;
        track.AddParameter("Id", nId);
        track.AddParameter("Name", strName.c_str());
        m_script.AddParameter("Track", &track);
    }

    /// Samples nStart up to nEnd of a file whose first sample is at nPosition.
    void AddRegion(long long nId, long long nTrack, const std::string& strFile, long long nStart,
                   long long nEnd, long long nPosition, int nRate = 48000, bool fMuted = false,
                   const std::vector<int>& channels = {})
    {
        CParameterBlock region;
        region.AddParameter("Id", nId);
        region.AddParameter("Track", nTrack);
        region.AddParameter("File", strFile.c_str());
        region.AddParameter("Start", nStart);
        region.AddParameter("End", nEnd);
        region.AddParameter("Position", nPosition);
        region.AddParameter("SampleRate", nRate);
        region.AddParameter("Muted", fMuted);
        CParameterBlock list;
        for (int nChannel : channels)
            list.AddParameter("Channel", nChannel);
        region.AddParameter("Channels", &list);
        m_script.AddParameter("Region", &region);
    }

    std::string Bytes()
    {
        m_root.AddParameter("script", &m_script);
        return SaveSession(m_root);
    }

private:
    CParameterBlock m_root;
    CParameterBlock m_script;
};

} // namespace TarvaneTest
