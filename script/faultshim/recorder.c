/* Loaded before the C library: records what a program does to the disk below RECORD_ROOT, with all bytes, in
   order. RECORD_LOG=PATH        gets the records; none are kept without it RECORD_OFFSET=N        is added to
   the numbers of files, so that those of several runs don't meet RECORD_NUMBERS=PATH    lines "number other":
   a file of that number is shown under the other one, as on the disk from which it was copied */
#include "paths.h"

#include <errno.h>
#include <stdarg.h>
#include <stdint.h>
#include <sys/stat.h>

enum { MOST = 4096 };
static struct { unsigned long real, shown; } numbers[MOST];
static int known, log_file = -1;
static unsigned long offset;

__attribute__((constructor)) static void start(void) {
    const char *path = getenv("RECORD_NUMBERS"), *added = getenv("RECORD_OFFSET"),
               *log = getenv("RECORD_LOG");
    FILE* file = path != NULL ? fopen(path, "r") : NULL;
    while (file != NULL && known < MOST &&
           fscanf(file, "%lu %lu", &numbers[known].real, &numbers[known].shown) == 2)
        ++known;
    if (file != NULL)
        fclose(file);
    if (log != NULL)
        log_file = open(log, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    offset = added != NULL ? strtoul(added, NULL, 10) : 0;
    root = getenv("RECORD_ROOT");
}

static unsigned long shown(unsigned long number) {
    for (int i = 0; i < known; ++i)
        if (numbers[i].real == number)
            return numbers[i].shown;
    return number + offset;
}

/* What happened, to which file, where or how much, and up to two runs of bytes behind it. */
static void note(char kind, unsigned long number, long where, const void* name, size_t name_size,
                 const void* bytes, size_t size) {
    const struct {
        uint64_t kind, number;
        int64_t where;
        uint64_t name_size, size;
    } head = {(unsigned char)kind, number, where, name_size, size};
    const int before = errno;
    if (log_file >= 0 &&
        (REAL(write)(log_file, &head, sizeof head) < 0 || REAL(write)(log_file, name, name_size) < 0 ||
         REAL(write)(log_file, bytes, size) < 0))
        abort();
    errno = before;
}

static unsigned long number_of(int file) {
    struct stat state;
    return REAL(fstat)(file, &state) == 0 ? shown(state.st_ino) : 0;
}

/* A name in its directory: a kind of event, and the file that it leads to from now on. */
static void note_name(char kind, int directory, const char* path, const char* bytes) {
    char whole[2 * PATH_MAX];
    struct stat holder, state = {0};
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

static void note_state(int directory, const char* path, int flags) {
    struct stat state;
    if (REAL(fstatat)(directory, path, &state, flags) != 0)
        return;
    const int64_t values[] = {state.st_mode, state.st_uid, state.st_gid,
                              state.st_mtim.tv_sec * 1000000000 + state.st_mtim.tv_nsec};
    note('M', shown(state.st_ino), 0, "", 0, values, sizeof values);
}

static int is_there(int directory, const char* path) {
    struct stat state;
    return REAL(fstatat)(directory, path, &state, AT_SYMLINK_NOFOLLOW) == 0;
}

static int opened(int directory, const char* path, int flags, int existed, int file) {
    if (file < 0 || !counted_path(directory, path))
        return file;
    if ((flags & O_TMPFILE) == O_TMPFILE) {
        struct stat state;
        if (REAL(fstat)(file, &state) == 0)
            note('B', shown(state.st_ino), state.st_mode, "", 0, "", 0);
    } else if ((flags & O_CREAT) != 0 && !existed) {
        note_name('C', directory, path, NULL);
    } else if ((flags & O_TRUNC) != 0) {
        note('T', number_of(file), 0, "", 0, "", 0);
    }
    return file;
}

#define OPENS(name, parameters, directory, arguments)                                                        \
    int name parameters {                                                                                    \
        va_list more;                                                                                        \
        va_start(more, flags);                                                                               \
        const mode_t mode = va_arg(more, mode_t);                                                            \
        va_end(more);                                                                                        \
        const int existed = (flags & O_CREAT) != 0 && is_there(directory, path);                             \
        return opened(directory, path, flags, existed, REAL(name) arguments);                                \
    }
OPENS(open, (const char* path, int flags, ...), AT_FDCWD, (path, flags, mode))
OPENS(open64, (const char* path, int flags, ...), AT_FDCWD, (path, flags, mode))
OPENS(openat, (int from, const char* path, int flags, ...), from, (from, path, flags, mode))
OPENS(openat64, (int from, const char* path, int flags, ...), from, (from, path, flags, mode))

#define SHOWS(name, parameters, type, arguments)                                                             \
    int name parameters {                                                                                    \
        const int result = REAL(name) arguments;                                                             \
        if (result == 0)                                                                                     \
            state->st_ino = shown(state->st_ino);                                                            \
        return result;                                                                                       \
    }
SHOWS(stat, (const char* path, struct stat* state), stat, (path, state))
SHOWS(stat64, (const char* path, struct stat64* state), stat64, (path, state))
SHOWS(lstat, (const char* path, struct stat* state), stat, (path, state))
SHOWS(lstat64, (const char* path, struct stat64* state), stat64, (path, state))
SHOWS(fstat, (int file, struct stat* state), stat, (file, state))
SHOWS(fstat64, (int file, struct stat64* state), stat64, (file, state))
SHOWS(fstatat, (int from, const char* path, struct stat* state, int flags), stat, (from, path, state, flags))
SHOWS(fstatat64, (int from, const char* path, struct stat64* state, int flags), stat64,
      (from, path, state, flags))

#define AFTER(result, name, parameters, arguments, counted, record)                                          \
    result name parameters {                                                                                 \
        const result done = REAL(name) arguments;                                                            \
        if (done >= 0 && counted) {                                                                          \
            record;                                                                                          \
        }                                                                                                    \
        return done;                                                                                         \
    }
#define WRITES(name, type)                                                                                   \
    AFTER(ssize_t, name, (int f, const void* b, size_t n, type o), (f, b, n, o), counted_file(f),            \
          note('W', number_of(f), o, "", 0, b, (size_t)done))
WRITES(pwrite, off_t)
WRITES(pwrite64, off64_t)
AFTER(ssize_t, write, (int f, const void* b, size_t n), (f, b, n), counted_file(f),
      note('W', number_of(f), lseek(f, 0, SEEK_CUR) - done, "", 0, b, (size_t)done))
AFTER(int, ftruncate, (int f, off_t n), (f, n), counted_file(f), note('T', number_of(f), n, "", 0, "", 0))
AFTER(int, ftruncate64, (int f, off64_t n), (f, n), counted_file(f), note('T', number_of(f), n, "", 0, "", 0))
AFTER(int, fsync, (int f), (f), counted_file(f), note('S', number_of(f), 0, "", 0, "", 0))
AFTER(int, fdatasync, (int f), (f), counted_file(f), note('D', number_of(f), 0, "", 0, "", 0))
AFTER(int, fchmod, (int f, mode_t m), (f, m), counted_file(f), note_state(f, "", AT_EMPTY_PATH))

#define ON_PATH(name, parameters, arguments, directory, path, record)                                        \
    AFTER(int, name, parameters, arguments, counted_path(directory, path), record)
static void note_cut(const char* path, long size) {
    struct stat state;
    if (REAL(stat)(path, &state) == 0)
        note('T', shown(state.st_ino), size, "", 0, "", 0);
}
ON_PATH(truncate, (const char* p, off_t n), (p, n), AT_FDCWD, p, note_cut(p, n))
ON_PATH(truncate64, (const char* p, off64_t n), (p, n), AT_FDCWD, p, note_cut(p, n))
ON_PATH(chmod, (const char* p, mode_t m), (p, m), AT_FDCWD, p, note_state(AT_FDCWD, p, 0))
ON_PATH(lchown, (const char* p, uid_t u, gid_t g), (p, u, g), AT_FDCWD, p,
        note_state(AT_FDCWD, p, AT_SYMLINK_NOFOLLOW))
ON_PATH(utimensat, (int d, const char* p, const struct timespec t[2], int f), (d, p, t, f), d, p,
        note_state(d, p, f))
ON_PATH(mkdir, (const char* p, mode_t m), (p, m), AT_FDCWD, p, note_name('C', AT_FDCWD, p, NULL))
ON_PATH(symlink, (const char* o, const char* p), (o, p), AT_FDCWD, p, note_name('C', AT_FDCWD, p, o))
ON_PATH(link, (const char* o, const char* p), (o, p), AT_FDCWD, p, note_name('L', AT_FDCWD, p, NULL))
ON_PATH(linkat, (int c, const char* o, int d, const char* p, int f), (c, o, d, p, f), d, p,
        note_name('L', d, p, NULL))
ON_PATH(unlink, (const char* p), (p), AT_FDCWD, p, note_name('U', AT_FDCWD, p, NULL))
ON_PATH(rmdir, (const char* p), (p), AT_FDCWD, p, note_name('U', AT_FDCWD, p, NULL))
ON_PATH(unlinkat, (int d, const char* p, int f), (d, p, f), d, p, note_name('U', d, p, NULL))
#define RENAMES(name, parameters, arguments, from, to)                                                       \
    ON_PATH(name, parameters, arguments, to, p, (note_name('L', to, p, NULL), note_name('U', from, o, NULL)))
RENAMES(rename, (const char* o, const char* p), (o, p), AT_FDCWD, AT_FDCWD)
RENAMES(renameat, (int c, const char* o, int d, const char* p), (c, o, d, p), c, d)
RENAMES(renameat2, (int c, const char* o, int d, const char* p, unsigned f), (c, o, d, p, f), c, d)
