#pragma once

typedef int jmp_buf[48];

extern "C"
{
    int setjmp(jmp_buf);
    [[noreturn]] void longjmp(jmp_buf, int);
}
