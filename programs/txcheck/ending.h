// How a run ends: its exit status, and the end when the person asks for it (INT, TERM).
#pragma once

// As file-system checkers have them: the sum of what applies.
constexpr int statusClean = 0;
constexpr int statusChanged = 1; // something was changed on the disk, an interrupted change finished among it
constexpr int statusLeft = 4;    // problems are left that are not known, or changes are not saved
constexpr int statusFailed =
    8; // something that is not known could not be read, or something could not be done
constexpr int statusUsage = 16; // alone: wrong usage that the command line shows
constexpr int statusEnded = 32; // the person has ended it

void endAtOnce(int status); // with that status and 32: nothing is at work that must not be left half done
void endBetweenSteps();     // the work asks at its next step
bool isAskedToEnd();
