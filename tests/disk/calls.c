// Loaded before the C library. It sees each call of a program on files below one directory, makes a chosen
// one fail, stop or wait, and records what the calls do to the disk. A number in the list below is that of a
// call, from 1. CALLS_BELOW=DIR        calls on what stands there count, and DIR itself does
// CALLS_ONLY=PATTERN     of them only those whose name and path, a blank between, match this extended
// expression CALLS_AT=N             that one fails             CALLS_FROM=N    that one and all after it fail
// CALLS_ERROR=N          with this value of errno; otherwise with EIO
// CALLS_SHORT=N          that read or write moves half of its bytes     CALLS_END=N    that one moves nothing
// CALLS_KILL=N           the program is killed before that one
// CALLS_PAUSE=N          before that one the command CALLS_DO runs, with its path in CALLS_PATH; 0: before
// each CALLS_SECTOR=PATH:N    no byte of that sector of 512 bytes of the file can be read CALLS_LIST=PATH
// gets a line for each call that counts: its name, a blank, the path CALLS_LOG=PATH         gets a record of
// each change of the disk, with all bytes, in order CALLS_SHOWN=PATH       lines "number other": a file of
// that number is shown and recorded under the other one, as on the disk from which it was copied CALLS_ADD=N
// is added to all other numbers
// CALLS_NAMED=1          there are no files without a name
// CALLS_CLOCK=N          the time of day is N seconds later
#define _GNU_SOURCE
#undef _FORTIFY_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <regex.h>
#include <signal.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

enum { MOST = 4096, NEVER = -1, BLOCK = 512 };
static const char *root, *sector, *command;
static regex_t only;
static long at, from, shortened, ended, killed, paused, error, calls, added, later, named;
static int list = -1, records = -1, known;
static struct { unsigned long real, shown; } numbers[MOST];

static long number(const char* name, long otherwise) {
    const char* value = getenv(name);
    return value != NULL ? atol(value) : otherwise;
}

static int output(const char* name) {
    const char* path = getenv(name);
    return path != NULL ? open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666) : -1;
}

__attribute__((constructor)) static void start(void) {
    FILE* file = getenv("CALLS_SHOWN") != NULL ? fopen(getenv("CALLS_SHOWN"), "r") : NULL;
    while (file != NULL && known < MOST &&
           fscanf(file, "%lu %lu", &numbers[known].real, &numbers[known].shown) == 2)
        ++known;
    if (file != NULL)
        fclose(file);
    list = output("CALLS_LIST");
    records = output("CALLS_LOG");
    if (regcomp(&only, getenv("CALLS_ONLY") != NULL ? getenv("CALLS_ONLY") : "", REG_EXTENDED | REG_NOSUB | REG_NEWLINE) !=
        0)
        abort();
    sector = getenv("CALLS_SECTOR");
    command = getenv("CALLS_DO");
    at = number("CALLS_AT", NEVER);
    from = number("CALLS_FROM", LONG_MAX);
    error = number("CALLS_ERROR", EIO);
    shortened = number("CALLS_SHORT", NEVER);
    ended = number("CALLS_END", NEVER);
    killed = number("CALLS_KILL", NEVER);
    paused = number("CALLS_PAUSE", NEVER);
    added = number("CALLS_ADD", 0);
    later = number("CALLS_CLOCK", 0);
    named = number("CALLS_NAMED", 0);
    root = getenv("CALLS_BELOW");
}

// The path of an open file, whole; empty where it has none.
static const char* path_of(int file, char* buffer) {
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t size = REAL(readlink)(link, buffer, PATH_MAX - 1);
    buffer[size > 0 ? size : 0] = '\0';
    return buffer;
}

// The whole path of a name in an open directory, or of the open file itself where there is no name.
static const char* whole_path(int directory, const char* path, char* buffer) {
    static const char opened[] = "/proc/self/fd/";
    if (path != NULL && strncmp(path, opened, strlen(opened)) == 0)
        return path_of(atoi(path + strlen(opened)), buffer);
    if (path != NULL && path[0] == '/')
        return strncpy(buffer, path, PATH_MAX - 1);
    if (directory != AT_FDCWD)
        path_of(directory, buffer);
    else if (getcwd(buffer, PATH_MAX) == NULL)
        return "";
    if (path != NULL && path[0] != '\0')
        snprintf(buffer + strlen(buffer), PATH_MAX, "/%s", path);
    return buffer;
}

// Not by system(), which has a request to end ignored meanwhile.
static void pause_before(const char* path) {
    const char *below = root, *words[] = {"sh", "-c", command, NULL};
    root = NULL;
    const pid_t child = fork();
    if (child == 0) {
        setenv("CALLS_PATH", path, 1);
        unsetenv("LD_PRELOAD");
        execv("/bin/sh", (char**)words);
        _exit(127);
    }
    while (waitpid(child, NULL, 0) < 0 && errno == EINTR)
        ;
    root = below;
}

// Whether a call counts: its number, or 0.
static long counts(const char* name, int directory, const char* path) {
    char whole[2 * PATH_MAX] = "", line[2 * PATH_MAX + 32];
    const int before = errno;
    if (root == NULL || (path == NULL && directory >= 0 && directory <= STDERR_FILENO))
        return 0;
    whole_path(directory, path, whole);
    errno = before;
    const size_t length = strlen(root);
    snprintf(line, sizeof line, "%s %s\n", name, whole);
    if (strncmp(whole, root, length) != 0 || (whole[length] != '/' && whole[length] != '\0') ||
        regexec(&only, line, 0, NULL, 0) != 0)
        return 0;
    ++calls;
    if (list >= 0 && REAL(write)(list, line, strlen(line)) < 0)
        abort();
    if (calls == killed)
        raise(SIGKILL);
    if (paused == 0 || calls == paused)
        pause_before(whole);
    errno = before;
    return calls;
}

static int fails(long call) {
    if (call == 0 || (call != at && call < from))
        return 0;
    errno = (int)error;
    return 1;
}

static int unreadable(int file, off_t position, size_t count) {
    char path[PATH_MAX];
    if (sector == NULL)
        return 0;
    const char* colon = strrchr(sector, ':');
    const off_t begin = atol(colon + 1) * BLOCK;
    if (position >= begin + BLOCK || position + (off_t)count <= begin ||
        strlen(path_of(file, path)) != (size_t)(colon - sector) || strncmp(path, sector, strlen(path)) != 0)
        return 0;
    errno = EIO;
    return 1;
}

static size_t moved(long call, size_t count) {
    return call == 0 || count == 0 ? count : call == ended ? 0 : call == shortened ? (count + 1) / 2 : count;
}

static unsigned long shown(unsigned long inode) {
    for (int i = 0; i < known; ++i)
        if (numbers[i].real == inode)
            return numbers[i].shown;
    return inode + (unsigned long)added;
}

// What happened, to which file, where or how much, and up to two runs of bytes after it.
static void note(char kind, unsigned long inode, long where, const void* name, size_t name_size,
                 const void* bytes, size_t size) {
    const struct {
        uint64_t kind, number;
        int64_t where;
        uint64_t name_size, size;
    } head = {(unsigned char)kind, inode, where, name_size, size};
    const int before = errno;
    if (records >= 0 && (REAL(write)(records, &head, sizeof head) < 0 ||
                         REAL(write)(records, name, name_size) < 0 || REAL(write)(records, bytes, size) < 0))
        abort();
    errno = before;
}

static void note_file(char kind, int directory, const char* path, long where, const void* bytes,
                      size_t size) {
    struct stat state;
    if (records >= 0 && REAL(fstatat)(directory, path, &state, path[0] == '\0' ? AT_EMPTY_PATH : 0) == 0)
        note(kind, shown(state.st_ino), kind == 'B' ? (long)state.st_mode : where, "", 0, bytes, size);
}

static void note_state(int directory, const char* path, int flags) {
    struct stat state;
    if (records < 0 || REAL(fstatat)(directory, path != NULL ? path : "", &state, flags | AT_EMPTY_PATH) != 0)
        return;
    const int64_t values[] = {state.st_mode, state.st_uid, state.st_gid,
                              state.st_mtim.tv_sec * 1000000000 + state.st_mtim.tv_nsec};
    note('M', shown(state.st_ino), 0, "", 0, values, sizeof values);
}

// A name in its directory: a kind of event, and the file that it leads to from now on.
static void note_name(char kind, int directory, const char* path, const char* bytes) {
    char whole[2 * PATH_MAX];
    struct stat holder, state = {0};
    if (records < 0)
        return;
    snprintf(whole, sizeof whole, "%s", path);
    char* slash = strrchr(whole, '/');
    const char* name = path + (slash == NULL ? 0 : slash - whole + 1);
    strcpy(slash == NULL ? whole : slash + (slash == whole), slash == NULL ? "." : "");
    if (REAL(fstatat)(directory, whole, &holder, 0) != 0)
        abort();
    const long mode =
        REAL(fstatat)(directory, path, &state, AT_SYMLINK_NOFOLLOW) == 0 ? (long)state.st_mode : 0;
    const uint64_t places[2] = {shown(holder.st_ino), mode == 0 ? 0 : shown(state.st_ino)};
    char head[sizeof places + NAME_MAX + 1];
    memcpy(head, places, sizeof places);
    const size_t size = strnlen(name, NAME_MAX);
    memcpy(head + sizeof places, name, size);
    note(kind, places[1], mode, head, sizeof places + size, bytes, bytes != NULL ? strlen(bytes) : 0);
}

static int opened(long call, int directory, const char* path, int flags, mode_t mode) {
    struct stat state;
    if (fails(call))
        return -1;
    if (named != 0 && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const int existed = REAL(fstatat)(directory, path, &state, AT_SYMLINK_NOFOLLOW) == 0;
    const int file = REAL(openat)(directory, path, flags, mode);
    if (file < 0 || call == 0)
        return file;
    if ((flags & O_TMPFILE) == O_TMPFILE)
        note_file('B', file, "", 0, "", 0);
    else if ((flags & O_CREAT) != 0 && !existed)
        note_name('C', directory, path, NULL);
    else if ((flags & O_TRUNC) != 0)
        note_file('T', file, "", 0, "", 0);
    return file;
}

#define OPENS(name, parameters, directory) \
    int name parameters { \
        va_list more; \
        va_start(more, flags); \
        const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0; \
        va_end(more); \
        const char* called = (flags & O_TMPFILE) == O_TMPFILE ? "tmpfile" : #name; \
        return opened(counts(called, directory, path), directory, path, flags, mode); \
    }
OPENS(open, (const char* path, int flags, ...), AT_FDCWD)
OPENS(openat, (int within, const char* path, int flags, ...), within)

// One call: what it gives, what where it fails, its name and parameters, the directory and path that it is on, and what is
// done where it has succeeded.
#define CALL(result, failure, name, parameters, arguments, directory, path, after) \
    result name parameters { \
        const long call = counts(#name, directory, path); \
        if (fails(call)) \
            return failure; \
        result done = REAL(name) arguments; \
        if (call != 0 && done != failure) { \
            after; \
        } \
        return done; \
    }
#define IN(name, parameters, arguments, directory, after) CALL(int, -1, name, parameters, arguments, directory, p, after)
#define AT(name, parameters, arguments, after) CALL(int, -1, name, parameters, arguments, HERE, p, after)
#define ON(name, parameters, arguments, after) CALL(int, -1, name, parameters, arguments, f, NULL, after)
#define TEXT(name, parameters, arguments, directory, path) CALL(ssize_t, -1, name, parameters, arguments, directory, path, )
#define HERE AT_FDCWD
#define SHOW s->st_ino = shown(s->st_ino)
#define P const char* p
#define O const char* o
#define TIMES const struct timespec t[2]

AT(stat, (P, struct stat* s), (p, s), SHOW)
AT(lstat, (P, struct stat* s), (p, s), SHOW)
ON(fstat, (int f, struct stat* s), (f, s), SHOW)
IN(fstatat, (int d, P, struct stat* s, int g), (d, p, s, g), d, SHOW)
IN(statx, (int d, P, int g, unsigned m, struct statx* s), (d, p, g, m, s), d, s->stx_ino = shown(s->stx_ino))
AT(access, (P, int m), (p, m), )
IN(faccessat, (int d, P, int m, int g), (d, p, m, g), d, )
TEXT(readlink, (P, char* b, size_t n), (p, b, n), HERE, p)
TEXT(readlinkat, (int d, P, char* b, size_t n), (d, p, b, n), d, p)
CALL(char*, NULL, realpath, (P, char* b), (p, b), HERE, p, )
AT(chdir, (P), (p), )
ON(fchdir, (int f), (f), )
CALL(DIR*, NULL, opendir, (P), (p), HERE, p, )
CALL(DIR*, NULL, fdopendir, (int f), (f), f, NULL, )
CALL(struct dirent*, NULL, readdir, (DIR* d), (d), dirfd(d), NULL, )

AT(mkdir, (P, mode_t m), (p, m), note_name('C', HERE, p, NULL))
IN(mkdirat, (int d, P, mode_t m), (d, p, m), d, note_name('C', d, p, NULL))
AT(symlink, (O, P), (o, p), note_name('C', HERE, p, o))
IN(symlinkat, (O, int d, P), (o, d, p), d, note_name('C', d, p, o))
AT(link, (O, P), (o, p), note_name('L', HERE, p, NULL))
IN(linkat, (int c, O, int d, P, int g), (c, o, d, p, g), d, note_name('L', d, p, NULL))
AT(unlink, (P), (p), note_name('U', HERE, p, NULL))
IN(unlinkat, (int d, P, int g), (d, p, g), d, note_name('U', d, p, NULL))
AT(rmdir, (P), (p), note_name('U', HERE, p, NULL))
#define MOVED(c, d) note_name('L', d, p, NULL), note_name('U', c, o, NULL)
CALL(int, -1, rename, (O, P), (o, p), HERE, p, MOVED(HERE, HERE))
CALL(int, -1, renameat, (int c, O, int d, P), (c, o, d, p), d, p, MOVED(c, d))
CALL(int, -1, renameat2, (int c, O, int d, P, unsigned g), (c, o, d, p, g), d, p, MOVED(c, d))

ON(ftruncate, (int f, off_t n), (f, n), note_file('T', f, "", n, "", 0))
ON(fsync, (int f), (f), note_file('S', f, "", 0, "", 0))
ON(fdatasync, (int f), (f), note_file('D', f, "", 0, "", 0))
CALL(off_t, -1, lseek, (int f, off_t n, int w), (f, n, w), f, NULL, )

AT(chmod, (P, mode_t m), (p, m), note_state(HERE, p, 0))
ON(fchmod, (int f, mode_t m), (f, m), note_state(f, "", 0))
IN(fchmodat, (int d, P, mode_t m, int g), (d, p, m, g), d, note_state(d, p, g))
AT(chown, (P, uid_t u, gid_t g), (p, u, g), note_state(HERE, p, 0))
AT(lchown, (P, uid_t u, gid_t g), (p, u, g), note_state(HERE, p, AT_SYMLINK_NOFOLLOW))
ON(fchown, (int f, uid_t u, gid_t g), (f, u, g), note_state(f, "", 0))
IN(fchownat, (int d, P, uid_t u, gid_t g, int w), (d, p, u, g, w), d, note_state(d, p, w))
ON(futimens, (int f, TIMES), (f, t), note_state(f, "", 0))
IN(utimensat, (int d, P, TIMES, int g), (d, p, t, g), d, note_state(d, p, g))

#define ATTRIBUTES(begin, type, place, directory, path) \
    TEXT(begin##listxattr, (type place, char* b, size_t n), (place, b, n), directory, path) \
    TEXT(begin##getxattr, (type place, const char* a, void* b, size_t n), (place, a, b, n), directory, path) \
    CALL(int, -1, begin##setxattr, (type place, const char* a, const void* b, size_t n, int g), (place, a, b, n, g), \
         directory, path, ) \
    CALL(int, -1, begin##removexattr, (type place, const char* a), (place, a), directory, path, )
ATTRIBUTES(f, int, f, f, NULL)

// A read or write at a position, its own or the file's.
#define MOVES(name, kind, place, parameters, arguments) \
    ssize_t name parameters { \
        const long call = counts(#name, f, NULL); \
        if (fails(call) || (call != 0 && kind == 'R' && unreadable(f, place, n))) \
            return -1; \
        const off_t where = call != 0 && kind == 'W' ? place : 0; \
        n = moved(call, n); \
        const ssize_t done = REAL(name) arguments; \
        if (call != 0 && kind == 'W' && done > 0) \
            note_file(kind, f, "", where, b, (size_t)done); \
        return done; \
    }
#define OWN_PLACE REAL(lseek)(f, 0, SEEK_CUR)
MOVES(pread, 'R', o, (int f, void* b, size_t n, off_t o), (f, b, n, o))
MOVES(pwrite, 'W', o, (int f, const void* b, size_t n, off_t o), (f, b, n, o))
MOVES(read, 'R', OWN_PLACE, (int f, void* b, size_t n), (f, b, n))
MOVES(write, 'W', OWN_PLACE, (int f, const void* b, size_t n), (f, b, n))

int close(int file) {
    const int failed = fails(counts("close", file, NULL));
    const int result = REAL(close)(file);
    if (failed)
        errno = (int)error;
    return failed ? -1 : result;
}

int fcntl(int file, int request, ...) {
    va_list more;
    va_start(more, request);
    void* argument = va_arg(more, void*);
    va_end(more);
    const int locks =
        request == F_OFD_SETLK || request == F_OFD_GETLK || request == F_SETLK || request == F_GETLK;
    return locks && fails(counts("fcntl", file, NULL)) ? -1 : REAL(fcntl)(file, request, argument);
}

time_t time(time_t* now) {
    const time_t moment = REAL(time)(NULL) + later;
    if (now != NULL)
        *now = moment;
    return moment;
}

// A kernel that does not know openat2, which would pass by the calls above.
long syscall(long request, ...) {
    va_list more;
    long words[6];
    va_start(more, request);
    for (int i = 0; i < 6; ++i)
        words[i] = va_arg(more, long);
    va_end(more);
    if (request == SYS_openat2) {
        errno = ENOSYS;
        return -1;
    }
    return REAL(syscall)(request, words[0], words[1], words[2], words[3], words[4], words[5]);
}

// The other names under which programs call these.
#define SAME(other, name) __asm__(".globl " #other "\n.set " #other ", " #name);
SAME(open64, open) SAME(__open_2, open) SAME(__open64_2, open)
SAME(openat64, openat) SAME(__openat_2, openat) SAME(__openat64_2, openat)
SAME(stat64, stat) SAME(lstat64, lstat) SAME(fstat64, fstat) SAME(fstatat64, fstatat)
SAME(__readlink_chk, readlink) SAME(__readlinkat_chk, readlinkat) SAME(__realpath_chk, realpath)
SAME(readdir64, readdir) SAME(ftruncate64, ftruncate) SAME(lseek64, lseek) SAME(fcntl64, fcntl)
SAME(pread64, pread) SAME(__pread_chk, pread) SAME(__pread64_chk, pread) SAME(pwrite64, pwrite) SAME(__read_chk, read)
