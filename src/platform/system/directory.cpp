#include "platform/system/directory.h"

#include <filesystem>
#include <system_error>

#include <unistd.h>

#include "platform/system/path.h"
#include "platform/system/posix.h"

std::string GetCurrentDirectoryA() {
    std::error_code failure;
    return std::filesystem::current_path(failure).string();
}

int SetCurrentDirectoryA(const char* path) {
    return succeeded(answer(chdir(resolvePath(path).c_str()))) ? 1 : 0;
}
