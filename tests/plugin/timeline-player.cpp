// A JACK client that plays the audio of its timeline while the transport rolls, and moves the
// transport as it is told:
//
//   timeline-player NAME CHANNELS
//
// reads "locate FRAME", "start", "stop" and "where" line by line, and answers each with a line; its
// first line is "ready". Ends with its input.
#include "tests/plugin/TimelineAudio.h"

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
};

int Play(jack_nframes_t nFrames, void* pUserData)
{
    const auto& player = *static_cast<const Player*>(pUserData);
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

std::string Obey(jack_client_t* pClient, std::istream& words)
{
    std::string strWord;
    words >> strWord;
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
        std::cout << Obey(player.pClient, words) << std::endl;
    }
    jack_client_close(player.pClient);
    return 0;
}
