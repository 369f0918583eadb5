// tarvane-session: prints, checks, compares and converts binary session files.
#include "apps/session/SessionTool.h"

int main(int argc, char** argv)
{
    return Tarvane::Session::RunSession(argc, argv);
}
