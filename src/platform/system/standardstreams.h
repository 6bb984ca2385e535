// The standard streams of the process.
#pragma once

// Called by every program before it opens anything: a standard stream that was closed at the start gets a
// descriptor that refuses every use, so that no file that is opened later takes its number and gets what is
// printed.
void openStandardStreams();
