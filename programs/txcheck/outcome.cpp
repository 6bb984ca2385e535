#include "outcome.h"

#include <map>
#include <string_view>
#include <utility>

#include "model/problem.h"
#include "status.h"

namespace {

struct Counting {
    const char* one;
    const char* many;
};
// By kind; slot 0 is that of any.
constexpr Counting countings[] = {
    {"problem", "problems"},
    {"class with empty files", "classes with empty files"},
    {"type with duplicate keys", "types with duplicate keys"},
    {"set of entries without keys", "sets of entries without keys"},
    {"set of keys without entries", "sets of keys without entries"},
    {"missing directory", "missing directories"},
    {"corrupted file", "corrupted files"},
    {"corrupted file", "corrupted files"},
};

Sentence problemsLeft(const Session& session, bool failed) {
    const bool planned = session.database.planning;
    const char* state = session.steps.solved.empty() ? "" : (planned ? " would be left" : " left");
    if (session.known.unknownIn(session.database) > 0)
        return {summary(session, state), Sentence::bad};
    if (failed)
        return {"No problem was found in what could be read."};
    if (session.steps.found)
        return {planned ? "No problem would be left." : "No problem is left.", Sentence::good};
    return {session.database.problemcount > 0 ? "Nothing is wrong but what is known." : "Nothing is wrong.",
            Sentence::good};
}

} // namespace

const char* kindPlural(int kind) {
    return countings[kind].many;
}

std::string counted(int count, int kind) {
    return std::to_string(count) + ' ' + (count == 1 ? countings[kind].one : countings[kind].many);
}

std::string summary(const Session& session, const char* state) {
    std::map<std::string_view, int> counts;
    for (int row = 1; row <= session.database.problemcount; ++row) {
        const TSXproblem& problem = *session.database.getproblem(row);
        counts[kindPlural(problem.kind)] += session.known.has(problem) ? 0 : 1;
    }
    std::string text;
    for (int kind = corruptsidefile; kind >= emptyfiles; --kind) {
        if (const int count = std::exchange(counts[kindPlural(kind)], 0); count > 0)
            text += (text.empty() ? ": " : ", ") + counted(count, kind);
    }
    return counted(session.known.unknownIn(session.database), 0) + state + text + ".";
}

std::vector<Sentence> outcome(const Session& session, const Options& options) {
    const bool failed = session.status() == statusFailed;
    std::vector<Sentence> sentences = {problemsLeft(session, failed)};
    if (failed)
        sentences.push_back({"Not everything could be read or done: see the messages.", Sentence::bad});
    if (session.database.planning)
        sentences.push_back({"This is a plan: nothing was written."});
    else if (session.saved)
        sentences.push_back({"All changed keys are on the disk."});
    else if (session.database.ismodified() == 1)
        sentences.push_back({options.save ? "Changed keys are not saved."
                                          : "Changed keys are not saved: give --save to write them to disk.",
                             Sentence::bad});
    return sentences;
}
