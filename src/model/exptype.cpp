#include "model/exptype.h"

#include <string>

#include "reporting/log.h"

TSXexptype::TSXexptype(int fileclass, std::string_view typetext)
    : classid(fileclass), name(std::string(typetext).c_str()) {
    logLine(Text<300>().format(">>>>>>>>>> Added new experiment type %d %s", classid, name.c_str()));
}
