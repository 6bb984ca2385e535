/* What libraries that are loaded before the C library share: the call behind a name, and the paths of calls.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static const char* root; /* calls below this directory count */

/* The path of an open file; empty where it has none. */
static const char* path_of(int file, char* buffer) {
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t size = readlink(link, buffer, PATH_MAX - 1);
    buffer[size > 0 ? size : 0] = '\0';
    return buffer;
}

static int below_root(const char* path) {
    return root != NULL && strncmp(path, root, strlen(root)) == 0;
}

static int counted_path(int directory, const char* path) {
    char base[PATH_MAX], whole[2 * PATH_MAX];
    if (root == NULL || path == NULL)
        return 0;
    if (path[0] == '/')
        return below_root(path);
    if (directory == AT_FDCWD && getcwd(base, sizeof base) == NULL)
        return 0;
    snprintf(whole, sizeof whole, "%s/%s", directory == AT_FDCWD ? base : path_of(directory, base), path);
    return below_root(whole);
}

static int counted_file(int file) {
    char path[PATH_MAX];
    return root != NULL && file > STDERR_FILENO && below_root(path_of(file, path));
}
