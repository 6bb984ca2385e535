#include "platform/system/faults.h"

DiskFaultHook diskFaultHook = nullptr;
