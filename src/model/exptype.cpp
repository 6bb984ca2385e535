#include "model/exptype.h"

#include "reporting/log.h"

TSXexptype::TSXexptype(int fileclass, const char* typetext) : classid(fileclass), name(typetext) {
    logLine(Text<300>().format(">>>>>>>>>> Added new experiment type %d %s", classid, name.c_str()));
}
