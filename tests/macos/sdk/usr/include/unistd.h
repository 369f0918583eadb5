#pragma once

#include <sys/types.h>

#define STDIN_FILENO 0
#define STDOUT_FILENO 1
#define STDERR_FILENO 2
#define F_OK 0
#define X_OK 1
#define W_OK 2
#define R_OK 4
#define SEEK_SET 0
#define SEEK_CUR 1
#define SEEK_END 2
#define _SC_PAGESIZE 29

extern "C"
{
    extern char* optarg;

    int access(const char*, int);
    unsigned alarm(unsigned);
    int chdir(const char*);
    int close(int);
    int dup(int);
    int dup2(int, int);
    [[noreturn]] void _exit(int);
    int execv(const char*, char* const*);
    int execve(const char*, char* const*, char* const*);
    int execvp(const char*, char* const*);
    pid_t fork(void);
    int fsync(int);
    int ftruncate(int, off_t);
    char* getcwd(char*, size_t);
    pid_t getpid(void);
    int getdtablesize(void);
    pid_t getppid(void);
    pid_t getpgrp(void);
    uid_t getuid(void);
    uid_t geteuid(void);
    int getentropy(void*, size_t);
    int isatty(int);
    int link(const char*, const char*);
    off_t lseek(int, off_t, int);
    int pipe(int[2]);
    ssize_t pread(int, void*, size_t, off_t);
    ssize_t pwrite(int, const void*, size_t, off_t);
    ssize_t read(int, void*, size_t);
    ssize_t readlink(const char*, char*, size_t);
    int rmdir(const char*);
    int setpgid(pid_t, pid_t);
    pid_t setsid(void);
    unsigned sleep(unsigned);
    int symlink(const char*, const char*);
    long sysconf(int);
    int truncate(const char*, off_t);
    int unlink(const char*);
    int usleep(useconds_t);
    ssize_t write(int, const void*, size_t);
    char* mkdtemp(char*);
    int mkstemp(char*);
    int mkstemps(char*, int);
}
