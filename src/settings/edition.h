// The edition constants: under which names the settings store keeps its values and the start-up program is
// found.
#pragma once

int makerId();
int productId();

// The two names in the path of the settings; empty for a combination that doesn't exist.
const char* makerName(int maker, int product);
const char* productName(int maker, int product);

// The start-up program; empty for a combination that doesn't exist.
const char* startProgram(int maker, int product);
