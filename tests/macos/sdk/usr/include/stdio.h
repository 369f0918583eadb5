#pragma once

#include <stdarg.h>
#include <sys/types.h>

typedef struct __sFILE FILE;
typedef long long fpos_t;

#define EOF (-1)
#define BUFSIZ 1024
#define SEEK_SET 0
#define SEEK_CUR 1
#define SEEK_END 2
#define _IOFBF 0
#define _IOLBF 1
#define _IONBF 2

extern "C"
{
    extern FILE* __stdinp;
    extern FILE* __stdoutp;
    extern FILE* __stderrp;

    int fclose(FILE*);
    int fflush(FILE*);
    void setbuf(FILE*, char*);
    int setvbuf(FILE*, char*, int, size_t);
    int fprintf(FILE*, const char*, ...) __attribute__((format(printf, 2, 3)));
    int fscanf(FILE*, const char*, ...) __attribute__((format(scanf, 2, 3)));
    int snprintf(char*, size_t, const char*, ...) __attribute__((format(printf, 3, 4)));
    int sprintf(char*, const char*, ...)
        __attribute__((format(printf, 2, 3), deprecated("use snprintf")));
    int sscanf(const char*, const char*, ...) __attribute__((format(scanf, 2, 3)));
    int vfprintf(FILE*, const char*, va_list);
    int vfscanf(FILE*, const char*, va_list);
    int vsscanf(const char*, const char*, va_list);
    int vsnprintf(char*, size_t, const char*, va_list);
    int vsprintf(char*, const char*, va_list) __attribute__((deprecated("use vsnprintf")));
    int vasprintf(char**, const char*, va_list);
    int fgetc(FILE*);
    char* fgets(char*, int, FILE*);
    int fputc(int, FILE*);
    int fputs(const char*, FILE*);
    int getc(FILE*);
    int putc(int, FILE*);
    int ungetc(int, FILE*);
    size_t fread(void*, size_t, size_t, FILE*);
    size_t fwrite(const void*, size_t, size_t, FILE*);
    int fgetpos(FILE*, fpos_t*);
    int fseek(FILE*, long, int);
    int fsetpos(FILE*, const fpos_t*);
    long ftell(FILE*);
    int fseeko(FILE*, off_t, int);
    off_t ftello(FILE*);
    void rewind(FILE*);
    void clearerr(FILE*);
    int feof(FILE*);
    int ferror(FILE*);
    void perror(const char*);
    FILE* fopen(const char*, const char*);
    FILE* fdopen(int, const char*);
    FILE* freopen(const char*, const char*, FILE*);
    int fileno(FILE*);
    int remove(const char*);
    int rename(const char*, const char*);
    FILE* tmpfile(void);
    char* tmpnam(char*) __attribute__((deprecated));
    int getchar(void);
    int scanf(const char*, ...) __attribute__((format(scanf, 1, 2)));
    int vscanf(const char*, va_list);
    int printf(const char*, ...) __attribute__((format(printf, 1, 2)));
    int putchar(int);
    int puts(const char*);
    int vprintf(const char*, va_list);
    ssize_t getline(char**, size_t*, FILE*);
    FILE* popen(const char*, const char*);
    int pclose(FILE*);
}

#define stdin __stdinp
#define stdout __stdoutp
#define stderr __stderrp
