// A program that forgets memory.
#include <cstdlib>

int main()
{
    void* volatile pForgotten = std::malloc(100);
    pForgotten = nullptr;
    return pForgotten == nullptr ? 0 : 1;
}
