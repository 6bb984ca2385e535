#include "views/current.h"

#include "model/database.h"

std::unique_ptr<TSXdatabase> database;
Text<2000> currentDatabase;
TSXmainframe* mainFrame = nullptr;
