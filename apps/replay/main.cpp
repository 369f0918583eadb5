// tarvane-replay: plays recordings of the link to one of its two ends, and draws them.
#include "apps/replay/Replay.h"

int main(int argc, char** argv)
{
    return Tarvane::Replay::RunReplay(argc, argv);
}
