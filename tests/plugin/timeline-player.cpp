// A JACK client that plays the audio of its timeline while the transport rolls, and moves the
// transport as it is told:
//
//   timeline-player NAME CHANNELS
//
// reads "locate FRAME", "start", "stop", "where" and "gap" line by line, and answers each with a
// line: where the transport is, or the longest time in milliseconds from one cycle to the next
// since "gap" was last asked for. Its first line is "ready". Ends with its input.
#include "tests/plugin/TimelineAudio.h"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <jack/jack.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

struct Player
{
    jack_client_t* pClient = nullptr;
    std::vector<jack_port_t*> ports;
    jack_time_t nLastCycle = 0;               // in microseconds
    std::atomic<jack_time_t> nLongestGap = 0; // in microseconds
};

int Play(jack_nframes_t nFrames, void* pUserData)
{
    auto& player = *static_cast<Player*>(pUserData);
    const jack_time_t nNow = jack_get_time();
    if (player.nLastCycle != 0 && nNow - player.nLastCycle > player.nLongestGap)
        player.nLongestGap = nNow - player.nLastCycle;
    player.nLastCycle = nNow;
    jack_position_t position;
    const bool fRolls = jack_transport_query(player.pClient, &position) == JackTransportRolling;
    for (unsigned nChannel = 0; nChannel < player.ports.size(); ++nChannel)
    {
        auto* pfOut = static_cast<float*>(jack_port_get_buffer(player.ports[nChannel], nFrames));
        for (jack_nframes_t n = 0; n < nFrames; ++n)
            pfOut[n] =
                fRolls ? TarvaneTest::TimelineFloat(std::int64_t{position.frame} + n, nChannel) : 0;
    }
    return 0;
}

std::string Obey(Player& player, std::istream& words)
{
    jack_client_t* pClient = player.pClient;
    std::string strWord;
    words >> strWord;
    if (strWord == "gap")
        return "gap " + std::to_string(player.nLongestGap.exchange(0) / 1000);
    jack_nframes_t nFrame = 0;
    if (strWord == "start")
        jack_transport_start(pClient);
    else if (strWord == "stop")
        jack_transport_stop(pClient);
    else if (strWord == "locate" && words >> nFrame)
        jack_transport_locate(pClient, nFrame);
    else if (strWord != "where")
        return "what?";
    jack_position_t position;
    const bool fRolls = jack_transport_query(pClient, &position) == JackTransportRolling;
    return (fRolls ? "rolling " : "stopped ") + std::to_string(position.frame);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    Player player;
    player.pClient = jack_client_open(argv[1], JackNoStartServer, nullptr);
    if (player.pClient == nullptr)
        return 1;
    for (int n = 1; n <= std::atoi(argv[2]); ++n)
        player.ports.push_back(jack_port_register(player.pClient,
                                                  ("out_" + std::to_string(n)).c_str(),
                                                  JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0));
    jack_set_process_callback(player.pClient, &Play, &player);
    if (jack_activate(player.pClient) != 0)
        return 1;
    std::cout << "ready" << std::endl;
    std::string strLine;
    while (std::getline(std::cin, strLine))
    {
        std::istringstream words(strLine);
        std::cout << Obey(player, words) << std::endl;
    }
    jack_client_close(player.pClient);
    return 0;
}
