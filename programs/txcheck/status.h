// The exit statuses of txcheck, as file-system checkers have them.
#pragma once

constexpr int statusClean = 0;  // nothing wrong, nothing left unsaved
constexpr int statusSolved = 1; // problems were found, all are gone, and nothing is left unsaved
constexpr int statusLeft = 4;   // problems are left, or changes are not saved
constexpr int statusFailed = 8; // the work could not be done
constexpr int statusUsage = 16; // wrong usage that the command line alone shows
