// tarvane-link: the script link on the command line, for makers of servers and for support.
#include "apps/link/Link.h"

int main(int argc, char** argv)
{
    return Tarvane::Link::RunLink(argc, argv);
}
