// What a report says, in its order: the one list that each form of it, text, page and document, goes through.
#pragma once

#include <functional>

#include "options.h"
#include "row.h"
#include "session.h"

enum class Form : std::uint8_t { text, page, document };

struct Section {
    enum Shape : std::uint8_t {
        list,    // of rows
        table,   // the same, with the titles of the fields over it in a text too
        object,  // one row
        members, // one row, whose fields are members of the document itself
    };
    const char* member = ""; // in the document; empty: for a person alone
    const char* name = "";   // in a page
    std::string title;       // for a person; empty: for programs alone
    Shape shape = list;
    std::function<bool(Row&)> next; // fills the next row; false where there is none
};

// Each call begins anew.
std::vector<Section> contentsOf(const Session& session, const Options& options, Form form);
// The same where --explain is given: what a problem or an unread thing is about.
std::vector<Section> explanationOf(const Session& session);
