#include "outcome.h"

#include <functional>
#include <map>

#include "model/problem.h"
#include "status.h"

namespace {

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

std::string counted(int count, int kind) {
    const KindOfProblem& facts = kindofproblem(kind);
    return std::to_string(count) + ' ' + (count == 1 ? facts.one : facts.many);
}

std::string summary(const Session& session, const char* state) {
    std::map<int, int, std::greater<>> counts;
    for (int row = 1; row <= session.database.problemcount; ++row) {
        const TSXproblem& problem = *session.database.getproblem(row);
        if (!session.known.has(problem))
            ++counts[problem.kind];
    }
    std::string text;
    for (const auto& [kind, count] : counts)
        text += (text.empty() ? ": " : ", ") + counted(count, kind);
    return counted(session.known.unknownIn(session.database), 0) + state + text + ".";
}

std::vector<Sentence> outcome(const Session& session, const Options& options) {
    const bool failed = (session.status() & statusFailed) != 0;
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
