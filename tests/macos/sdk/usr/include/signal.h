#pragma once

#include <sys/types.h>

typedef int sig_atomic_t;
typedef unsigned int sigset_t;

#define SIGHUP 1
#define SIGINT 2
#define SIGQUIT 3
#define SIGILL 4
#define SIGABRT 6
#define SIGFPE 8
#define SIGKILL 9
#define SIGBUS 10
#define SIGSEGV 11
#define SIGPIPE 13
#define SIGALRM 14
#define SIGTERM 15
#define SIGSTOP 17
#define SIGCONT 19
#define SIGCHLD 20
#define SIGXCPU 24
#define SIGXFSZ 25
#define SIGPROF 27
#define SIGUSR1 30
#define SIGUSR2 31
#define SIG_DFL ((void (*)(int))0)
#define SIG_IGN ((void (*)(int))1)
#define SIG_ERR ((void (*)(int)) - 1)
#define SA_RESTART 0x0002
#define SA_RESETHAND 0x0004
#define SA_SIGINFO 0x0040
#define SIG_BLOCK 1
#define SIG_UNBLOCK 2
#define SIG_SETMASK 3

typedef struct __siginfo
{
    int si_signo;
    int si_errno;
    int si_code;
    pid_t si_pid;
    uid_t si_uid;
    int si_status;
    void* si_addr;
} siginfo_t;

struct sigaction
{
    union
    {
        void (*sa_handler)(int);
        void (*sa_sigaction)(int, siginfo_t*, void*);
    };
    sigset_t sa_mask;
    int sa_flags;
};

extern "C"
{
    void (*signal(int, void (*)(int)))(int);
    int raise(int);
    int kill(pid_t, int);
    int sigaction(int, const struct sigaction*, struct sigaction*);
    int sigemptyset(sigset_t*);
    int sigfillset(sigset_t*);
    int sigaddset(sigset_t*, int);
    int sigprocmask(int, const sigset_t*, sigset_t*);
    int pthread_sigmask(int, const sigset_t*, sigset_t*);
    int sigwait(const sigset_t*, int*);
    int pthread_kill(pthread_t, int);
}
