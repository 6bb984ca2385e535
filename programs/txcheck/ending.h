// How a run ends when the person asks for it (INT, TERM).
#pragma once

void endAtOnce(int status); // with that status and 32: nothing is at work that must not be left half done
void endBetweenSteps();     // the work asks at its next step
bool isAskedToEnd();
