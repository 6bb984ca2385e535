// The icons of the tool.
#pragma once

#include "resources/resources.h"

extern const IconResource iconTable[2];
