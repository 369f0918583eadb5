#pragma once

#include <signal.h>
#include <sys/types.h>

#define WNOHANG 1
#define WUNTRACED 2
#define WEXITED 4
#define WNOWAIT 0x20
typedef enum
{
    P_ALL,
    P_PID,
    P_PGID
} idtype_t;
#define WIFEXITED(x) (((x)&0177) == 0)
#define WEXITSTATUS(x) (((x) >> 8) & 0xff)
#define WIFSIGNALED(x) (((x)&0177) != 0177 && ((x)&0177) != 0)
#define WTERMSIG(x) ((x)&0177)
#define WIFSTOPPED(x) (((x)&0177) == 0177)

extern "C"
{
    pid_t wait(int*);
    pid_t waitpid(pid_t, int*, int);
    int waitid(idtype_t, id_t, siginfo_t*, int);
}
