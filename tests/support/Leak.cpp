// A program that forgets memory.
#include <cstdlib>

int main()
{
    // A register or the stack may still know the last one.
    void* volatile pForgotten = nullptr;
    for (int n = 0; n < 100; ++n)
        pForgotten = std::malloc(100);
    return pForgotten != nullptr ? 0 : 1;
}
