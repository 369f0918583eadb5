// tarvane-conform: holds the neighbours of the view against what it needs of them.
#include "apps/conform/Conform.h"

int main(int argc, char** argv)
{
    return Tarvane::Conform::RunConform(argc, argv);
}
