#pragma once

#include <stdint.h>
#include <sys/types.h>

#define PROC_ALL_PIDS 1
#define PROC_PIDLISTFDS 1
#define PROC_PIDTBSDINFO 3
#define PROC_PIDFDVNODEPATHINFO 2
#define PROX_FDTYPE_VNODE 1
#define MAXPATHLEN 1024
#define MAXCOMLEN 16
#define PROC_PIDPATHINFO_MAXSIZE (4 * 1024)

struct proc_bsdinfo
{
    uint32_t pbi_flags;
    uint32_t pbi_status;
    uint32_t pbi_xstatus;
    uint32_t pbi_pid;
    uint32_t pbi_ppid;
    uid_t pbi_uid;
    gid_t pbi_gid;
    uid_t pbi_ruid;
    gid_t pbi_rgid;
    uid_t pbi_svuid;
    gid_t pbi_svgid;
    uint32_t rfu_1;
    char pbi_comm[MAXCOMLEN];
    char pbi_name[2 * MAXCOMLEN];
    uint32_t pbi_nfiles;
    uint32_t pbi_pgid;
    uint32_t pbi_pjobc;
    uint32_t e_tdev;
    uint32_t e_tpgid;
    int32_t pbi_nice;
    uint64_t pbi_start_tvsec;
    uint64_t pbi_start_tvusec;
};

struct proc_fdinfo
{
    int32_t proc_fd;
    uint32_t proc_fdtype;
};

struct proc_fileinfo
{
    uint32_t fi_openflags;
    uint32_t fi_status;
    off_t fi_offset;
    int32_t fi_type;
    uint32_t fi_guardflags;
};

struct vinfo_stat
{
    uint32_t vst_dev;
    uint16_t vst_mode;
    uint16_t vst_nlink;
    uint64_t vst_ino;
    uid_t vst_uid;
    gid_t vst_gid;
    int64_t vst_atime;
    int64_t vst_atimensec;
    int64_t vst_mtime;
    int64_t vst_mtimensec;
    int64_t vst_ctime;
    int64_t vst_ctimensec;
    int64_t vst_birthtime;
    int64_t vst_birthtimensec;
    off_t vst_size;
    int64_t vst_blocks;
    int32_t vst_blksize;
    uint32_t vst_flags;
    uint32_t vst_gen;
    uint32_t vst_rdev;
    int64_t vst_qspare[2];
};

struct vnode_info
{
    struct vinfo_stat vi_stat;
    int vi_type;
    int vi_pad;
    struct
    {
        int32_t val[2];
    } vi_fsid;
};

struct vnode_info_path
{
    struct vnode_info vip_vi;
    char vip_path[MAXPATHLEN];
};

struct vnode_fdinfowithpath
{
    struct proc_fileinfo pfi;
    struct vnode_info_path pvip;
};

extern "C" int proc_pidpath(int pid, void* buffer, uint32_t buffersize);
extern "C" int proc_pidinfo(int pid, int flavor, uint64_t arg, void* buffer, int buffersize);
extern "C" int proc_listpids(uint32_t type, uint32_t typeinfo, void* buffer, int buffersize);
extern "C" int proc_pidfdinfo(int pid, int fd, int flavor, void* buffer, int buffersize);
