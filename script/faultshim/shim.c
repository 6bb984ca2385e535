/* Loaded before the C library: counts the calls of the program on files below FAULT_ROOT, and makes some of them fail.
   FAULT_AT=N      the call of that number, from 1, fails
   FAULT_FROM=N    that one and all behind it fail
   FAULT_SHORT=N   the read or write of that number, counted by themselves, moves only half of its bytes
   FAULT_SECTOR=PATH:N    no byte of that sector of 512 bytes of the file can be read
   FAULT_KILL=N    the program is killed in front of the call of that number
   FAULT_REPORT=PATH      gets the numbers of calls at the end: all, then the reads and writes among them */
#include "paths.h"

#include <dirent.h>
#include <errno.h>
#include <signal.h>
#include <stdarg.h>
#include <sys/stat.h>
#include <sys/xattr.h>

static const char *sector;
static long at, from, shortened, killed, calls, moves, sector_number;

static long number(const char *name) {
    const char *value = getenv(name);
    return value != NULL ? atol(value) : 0;
}

__attribute__((constructor)) static void start(void) {
    root = getenv("FAULT_ROOT");
    at = number("FAULT_AT");
    from = number("FAULT_FROM");
    shortened = number("FAULT_SHORT");
    killed = number("FAULT_KILL");
    sector = getenv("FAULT_SECTOR");
    if (sector != NULL)
        sector_number = atol(strrchr(sector, ':') + 1);
}

__attribute__((destructor)) static void finish(void) {
    const char *report = getenv("FAULT_REPORT");
    root = NULL;
    FILE *file = report != NULL ? fopen(report, "w") : NULL;
    if (file == NULL)
        return;
    fprintf(file, "%ld %ld\n", calls, moves);
    fclose(file);
}

/* Counts a call on something below the root: whether it is to fail. */
static int fails(int counted) {
    if (!counted)
        return 0;
    if (++calls == killed)
        raise(SIGKILL);
    if (calls != at && (from == 0 || calls < from))
        return 0;
    errno = EIO;
    return 1;
}

static size_t moved(int file, size_t count) {
    if (count < 2 || !counted_file(file) || ++moves != shortened)
        return count;
    return count / 2;
}

static int unreadable(int file, off_t position, size_t count) {
    char path[PATH_MAX];
    if (sector == NULL)
        return 0;
    const size_t length = (size_t)(strrchr(sector, ':') - sector);
    path_of(file, path);
    if (strlen(path) != length || strncmp(path, sector, length) != 0)
        return 0;
    if (position >= (sector_number + 1) * 512 || position + (off_t)count <= sector_number * 512)
        return 0;
    errno = EIO;
    return 1;
}

#define ON_PATH(result, name, parameters, directory, path, arguments)                                                  \
    result name parameters {                                                                                           \
        return fails(counted_path(directory, path)) ? -1 : REAL(name) arguments;                                       \
    }
#define ON_FILE(result, name, parameters, file, arguments)                                                             \
    result name parameters {                                                                                           \
        return fails(counted_file(file)) ? -1 : REAL(name) arguments;                                                  \
    }

#define OPENS(name)                                                                                                    \
    int name(const char *path, int flags, ...) {                                                                       \
        va_list more;                                                                                                  \
        va_start(more, flags);                                                                                         \
        const mode_t mode = va_arg(more, mode_t);                                                                      \
        va_end(more);                                                                                                  \
        return fails(counted_path(AT_FDCWD, path)) ? -1 : REAL(name)(path, flags, mode);                               \
    }
#define OPENS_AT(name)                                                                                                 \
    int name(int directory, const char *path, int flags, ...) {                                                        \
        va_list more;                                                                                                  \
        va_start(more, flags);                                                                                         \
        const mode_t mode = va_arg(more, mode_t);                                                                      \
        va_end(more);                                                                                                  \
        return fails(counted_path(directory, path)) ? -1 : REAL(name)(directory, path, flags, mode);                   \
    }
OPENS(open)
OPENS(open64)
OPENS_AT(openat)
OPENS_AT(openat64)

ON_PATH(int, stat, (const char *p, struct stat *s), AT_FDCWD, p, (p, s))
ON_PATH(int, stat64, (const char *p, struct stat64 *s), AT_FDCWD, p, (p, s))
ON_PATH(int, lstat, (const char *p, struct stat *s), AT_FDCWD, p, (p, s))
ON_PATH(int, lstat64, (const char *p, struct stat64 *s), AT_FDCWD, p, (p, s))
ON_PATH(int, fstatat, (int d, const char *p, struct stat *s, int f), d, p, (d, p, s, f))
ON_PATH(int, fstatat64, (int d, const char *p, struct stat64 *s, int f), d, p, (d, p, s, f))
ON_PATH(int, statx, (int d, const char *p, int f, unsigned m, struct statx *s), d, p, (d, p, f, m, s))
ON_FILE(int, fstat, (int f, struct stat *s), f, (f, s))
ON_FILE(int, fstat64, (int f, struct stat64 *s), f, (f, s))
ON_PATH(int, access, (const char *p, int m), AT_FDCWD, p, (p, m))
ON_PATH(int, faccessat, (int d, const char *p, int m, int f), d, p, (d, p, m, f))
ON_PATH(ssize_t, readlink, (const char *p, char *b, size_t n), AT_FDCWD, p, (p, b, n))
ON_PATH(int, symlink, (const char *o, const char *p), AT_FDCWD, p, (o, p))
ON_PATH(int, rmdir, (const char *p), AT_FDCWD, p, (p))
ON_PATH(int, truncate, (const char *p, off_t n), AT_FDCWD, p, (p, n))
ON_PATH(int, truncate64, (const char *p, off64_t n), AT_FDCWD, p, (p, n))
ON_PATH(int, chmod, (const char *p, mode_t m), AT_FDCWD, p, (p, m))
ON_PATH(int, lchown, (const char *p, uid_t u, gid_t g), AT_FDCWD, p, (p, u, g))
ON_PATH(int, utimensat, (int d, const char *p, const struct timespec t[2], int f), d, p, (d, p, t, f))
ON_PATH(int, renameat2, (int c, const char *o, int d, const char *p, unsigned f), d, p, (c, o, d, p, f))
ON_PATH(ssize_t, llistxattr, (const char *p, char *b, size_t n), AT_FDCWD, p, (p, b, n))
ON_PATH(ssize_t, lgetxattr, (const char *p, const char *a, void *b, size_t n), AT_FDCWD, p, (p, a, b, n))
ON_PATH(int, lsetxattr, (const char *p, const char *a, const void *b, size_t n, int f), AT_FDCWD, p, (p, a, b, n, f))
ON_PATH(int, mkdir, (const char *p, mode_t m), AT_FDCWD, p, (p, m))
ON_PATH(int, unlink, (const char *p), AT_FDCWD, p, (p))
ON_PATH(int, unlinkat, (int d, const char *p, int f), d, p, (d, p, f))
ON_PATH(int, link, (const char *o, const char *p), AT_FDCWD, p, (o, p))
ON_PATH(int, linkat, (int c, const char *o, int d, const char *p, int f), d, p, (c, o, d, p, f))
ON_PATH(int, rename, (const char *o, const char *p), AT_FDCWD, p, (o, p))
ON_PATH(int, renameat, (int c, const char *o, int d, const char *p), d, p, (c, o, d, p))
ON_FILE(int, ftruncate, (int f, off_t n), f, (f, n))
ON_FILE(int, ftruncate64, (int f, off64_t n), f, (f, n))
ON_FILE(off_t, lseek, (int f, off_t n, int w), f, (f, n, w))
ON_FILE(off64_t, lseek64, (int f, off64_t n, int w), f, (f, n, w))
ON_FILE(int, fsync, (int f), f, (f))
ON_FILE(int, fdatasync, (int f), f, (f))
ON_FILE(int, syncfs, (int f), f, (f))
ON_FILE(int, fchown, (int f, uid_t u, gid_t g), f, (f, u, g))
ON_FILE(int, fchmod, (int f, mode_t m), f, (f, m))

#define READS(name, offset)                                                                                            \
    ssize_t name(int file, void *bytes, size_t count, offset position) {                                               \
        if (fails(counted_file(file)) || unreadable(file, position, count))                                            \
            return -1;                                                                                                 \
        return REAL(name)(file, bytes, moved(file, count), position);                                                  \
    }
#define WRITES(name, offset)                                                                                           \
    ssize_t name(int file, const void *bytes, size_t count, offset position) {                                         \
        if (fails(counted_file(file)))                                                                                 \
            return -1;                                                                                                 \
        return REAL(name)(file, bytes, moved(file, count), position);                                                  \
    }
READS(pread, off_t)
READS(pread64, off64_t)
WRITES(pwrite, off_t)
WRITES(pwrite64, off64_t)

ssize_t read(int file, void *bytes, size_t count) {
    if (fails(counted_file(file)) || unreadable(file, REAL(lseek)(file, 0, SEEK_CUR), count))
        return -1;
    return REAL(read)(file, bytes, moved(file, count));
}

ssize_t write(int file, const void *bytes, size_t count) {
    return fails(counted_file(file)) ? -1 : REAL(write)(file, bytes, moved(file, count));
}

int close(int file) {
    const int failed = fails(counted_file(file));
    const int result = REAL(close)(file);
    if (failed)
        errno = EIO;
    return failed ? -1 : result;
}

DIR *opendir(const char *path) {
    return fails(counted_path(AT_FDCWD, path)) ? NULL : REAL(opendir)(path);
}

struct dirent *readdir(DIR *directory) {
    return fails(counted_file(dirfd(directory))) ? NULL : REAL(readdir)(directory);
}

struct dirent64 *readdir64(DIR *directory) {
    return fails(counted_file(dirfd(directory))) ? NULL : REAL(readdir64)(directory);
}

static int fcntl_of(int (*real)(int, int, ...), int file, int command, void *argument) {
    return command == F_OFD_SETLK && fails(counted_file(file)) ? -1 : real(file, command, argument);
}

#define CONTROLS(name)                                                                                                 \
    int name(int file, int command, ...) {                                                                             \
        va_list more;                                                                                                  \
        va_start(more, command);                                                                                       \
        void *argument = va_arg(more, void *);                                                                         \
        va_end(more);                                                                                                  \
        return fcntl_of(REAL(name), file, command, argument);                                                          \
    }
CONTROLS(fcntl)
CONTROLS(fcntl64)
