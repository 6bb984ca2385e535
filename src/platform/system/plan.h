// The disk as it would be after changes that are planned and not made: entries that count as gone,
// directories that count as there. Look-ups, searches and opens of this half go by it; nothing is planned at
// the start.
#pragma once

#include <string>
#include <vector>

// Counts a plain file or a link as gone, where removeFile would delete it. False on failure, as there.
bool planRemoval(const char* path);

// Counts a directory as made, where CreateDirectoryA would make it. False on failure, as there.
bool planDirectory(const char* path);

// Whether entries of the directory in which the path's last component stands can be made and taken away: 0,
// else the number of the reason.
unsigned obstacleToChange(const char* path);

// Takes the disk as it is again.
void forgetPlan();

// For this half alone; paths are taken as they stand.
bool countsAsGone(const std::string& path);
bool countsAsDirectory(const std::string& path);
// Brings the names of a directory into line with what is planned.
void applyPlan(const std::string& directory, std::vector<std::string>& names);
