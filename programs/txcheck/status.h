// The exit statuses of txcheck, as file-system checkers have them: the sum of what applies.
#pragma once

constexpr int statusClean = 0;
constexpr int statusChanged = 1; // something was changed on the disk, an interrupted change finished among it
constexpr int statusLeft = 4;    // problems are left that are not known, or changes are not saved
constexpr int statusFailed =
    8; // something that is not known could not be read, or something could not be done
constexpr int statusUsage = 16; // alone: wrong usage that the command line shows
constexpr int statusEnded = 32; // the person has ended it
