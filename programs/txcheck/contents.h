// What a report says, in its order: the one list that each form of it, text, page and document, goes through.
#pragma once

#include "options.h"
#include "row.h"
#include "session.h"

enum class Form : std::uint8_t { text, page, document };

// Each call begins anew.
std::vector<Section> contentsOf(const Session& session, const Options& options, Form form);
// The same where --explain is given: what a problem or an unread thing is about.
std::vector<Section> explanationOf(const Session& session);
