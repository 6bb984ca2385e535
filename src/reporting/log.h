// The log of a run: one plain text file, TXLOG.TXT, made anew by each run. Every line is on disk when its
// call returns, so that the log survives a sudden end of the process up to its last line.
#pragma once

#include "platform/system/text.h"

extern int logEnabled;     // 1: lines are written; any other value: everything here does nothing
extern Text<2000> logPath; // the log file of this run

// Switches the log on (1) or off, and when on makes TXLOG.TXT in the directory. False when the file
// can't be made or is a link, whose file is not the log's to empty, which was then told, and the
// program is expected to leave.
bool startLog(int enabled, const char* directory);

// Writes the trailer, and tells it if lines were lost.
void endLog();
int lostLogLines(); // how many could not be written so far

// Appends one line, taken as it stands. A line that can't be appended is lost.
void logLine(const char* text);

// Appends "Local error: " and the text; what does not fit into 386 bytes is cut.
void logLocalError(const char* text);
