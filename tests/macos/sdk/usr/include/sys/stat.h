#pragma once

#include <sys/types.h>

struct stat
{
    dev_t st_dev;
    mode_t st_mode;
    nlink_t st_nlink;
    ino_t st_ino;
    uid_t st_uid;
    gid_t st_gid;
    dev_t st_rdev;
    struct timespec st_atimespec;
    struct timespec st_mtimespec;
    struct timespec st_ctimespec;
    struct timespec st_birthtimespec;
    off_t st_size;
    blkcnt_t st_blocks;
    blksize_t st_blksize;
    unsigned st_flags;
    unsigned st_gen;
    int st_lspare;
    long long st_qspare[2];
};

#define S_IFMT 0170000
#define S_IFIFO 0010000
#define S_IFDIR 0040000
#define S_IFREG 0100000
#define S_IFLNK 0120000
#define S_ISDIR(m) (((m)&S_IFMT) == S_IFDIR)
#define S_ISREG(m) (((m)&S_IFMT) == S_IFREG)
#define S_ISFIFO(m) (((m)&S_IFMT) == S_IFIFO)
#define S_IRWXU 0000700
#define S_IRUSR 0000400
#define S_IWUSR 0000200
#define S_IXUSR 0000100
#define S_IRGRP 0000040
#define S_IWGRP 0000020
#define S_IROTH 0000004
#define S_IWOTH 0000002

extern "C"
{
    int stat(const char*, struct stat*);
    int fstat(int, struct stat*);
    int lstat(const char*, struct stat*);
    int mkdir(const char*, mode_t);
    int mkfifo(const char*, mode_t);
    int chmod(const char*, mode_t);
    int fchmod(int, mode_t);
    mode_t umask(mode_t);
}
