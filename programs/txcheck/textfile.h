// Whole files of the person's own: the list of what is known, a page.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/bytestream.h"

#include "platform/system/tree.h"

// Empty on success, else what could not be done, with the path and the reason. At most 64 MiB are read.
std::string readTextFile(const std::string& path, std::string& content);

// A file that is written as its text is made. A new one appears whole at close or not at all; nothing below a
// database directory is written, and nothing through a link.
class TextFile : private std::streambuf {
public:
    // Empty on success, else what could not be done, with the path and the reason; close tells of the writing
    // too.
    std::string open(const std::string& path, const std::vector<std::string>& databases);
    std::ostream& out() { return text; }
    std::string close();

private:
    int_type overflow(int_type byte) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;

    std::string name;
    ByteStream stream;
    std::ostream text{this};
};
