#include "platform/system/plainfile.h"

#include "platform/system/tree.h"

bool removeFile(const std::string& path) {
    Tree place;
    Entry entry;
    std::string name;
    Failure failure = place.openDirectoryOf(path, name);
    if (!failure)
        failure = place.look(name, Links::refused, entry);
    return succeeded(failure ? failure : place.remove(name, entry.file));
}
