// Where the windows stood when they were closed last: values of the per-user settings store, the same for all
// databases. The texts are those of the window layer.
#pragma once

#include <string>

std::string readWindowPlace(const char* window); // empty where none is kept
// What can't be written is not remembered, which is no reason to disturb anybody.
void writeWindowPlace(const char* window, const std::string& place);
