// How far the reading of a database is, for a person who waits.
#pragma once

#include "platform/system/tree.h"

class TSXdatafile;

class Progress {
public:
    explicit Progress(Tree& tree);      // counts the data files that are to be read
    void show(const TSXdatafile& file); // which has been read

private:
    long total = 0;
    long files = 0;
    long records = 0;
};
