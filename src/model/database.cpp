#include "model/database.h"

#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/letters.h"

TSXdatabase::TSXdatabase(const char* datadirectory)
    : datapath(datadirectory), types(1), keytree(*this), keyarray(1), visiblekeys(1), problems(1) {}

TSXdatabase::~TSXdatabase() = default;

void TSXdatabase::readlists(const char* directorytext) {
    directory = directorytext;
    clearproblems();
    types[0] = std::make_unique<TSXexptype>(0, "Database");
    lists.push_back(std::make_unique<TSXdbslist>(*this));
    lists.push_back(std::make_unique<TSXgellist>(*this));
    lists.push_back(std::make_unique<TSXcharlist>(*this));
    lists.push_back(std::make_unique<TSXseqlist>(*this));
    lists.push_back(std::make_unique<TSXpairlist>(*this));
    lists.push_back(std::make_unique<TSXgel2dlist>(*this));
    lastlist = static_cast<std::int32_t>(lists.size()) - 1;
}

int TSXdatabase::addexptype(int fileclass, const char* name) {
    for (std::int32_t i = lasttype; i >= 1; --i) {
        const TSXexptype& type = *gettype(i);
        if (type.classid == fileclass && equalIgnoringCase(type.name.view(), name))
            return i;
    }
    if (lasttype >= maxtypes)
        return lasttype;
    types.push_back(std::make_unique<TSXexptype>(fileclass, name));
    return ++lasttype;
}

TSXexptype* TSXdatabase::gettype(int index) const {
    return index >= 0 && index <= lasttype ? types[static_cast<std::size_t>(index)].get() : nullptr;
}

TSXkeyentry* TSXdatabase::getvisiblekey(int index) const {
    if (index < 1 || index > visiblecount)
        return nullptr;
    return keyarray[static_cast<std::size_t>(visiblekeys[static_cast<std::size_t>(index)])];
}

TSXkeyentry& TSXdatabase::findoraddkey(std::string_view key) {
    TSXkeyentry& entry = keytree.findoradd(key);
    if (keytree.added == 1) {
        keyarray.push_back(&entry);
        visiblekeys.push_back(++keytotal);
        ++visiblecount;
    }
    return entry;
}

void TSXdatabase::addproblem(std::unique_ptr<TSXproblem> problem) {
    problems.push_back(std::move(problem));
    ++problemcount;
}

TSXproblem* TSXdatabase::getproblem(int index) const {
    return index >= 1 && index <= problemcount ? problems[static_cast<std::size_t>(index)].get() : nullptr;
}

void TSXdatabase::clearproblems() {
    problems.resize(1);
    problemcount = 0;
}
