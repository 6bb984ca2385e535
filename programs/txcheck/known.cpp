#include "known.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <set>
#include <sstream>

#include "concern.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "textfile.h"

namespace {

// FNV-1a; texts are set apart by a byte that none of them holds.
class Digest {
public:
    Digest& add(std::string_view bytes) {
        for (const char byte : bytes)
            take(static_cast<unsigned char>(byte));
        take(0);
        return *this;
    }
    std::uint64_t value = 0xCBF29CE484222325U;

private:
    void take(unsigned char byte) { value = (value ^ byte) * 0x100000001B3U; }
};

std::vector<std::uint64_t> digestsOf(const TSXproblem& problem) {
    std::vector<std::uint64_t> digests;
    forEachKey(problem, [&](const TSXkeyentry& key, std::span<const Occurrence> records) {
        for (const Occurrence& record : records)
            digests.push_back(Digest()
                                  .add(key.key)
                                  .add(shortPathOf(*record.file))
                                  .add(std::to_string(record.record))
                                  .value);
    });
    forEachFile(problem, [&](const std::string& file) { digests.push_back(Digest().add(file).value); });
    std::ranges::sort(digests);
    return digests;
}

std::string lineOf(const std::string& id, const std::vector<std::uint64_t>& digests) {
    std::string line = id + '\t' + std::to_string(digests.size()) + '\t';
    for (const std::uint64_t digest : digests)
        line += Text<20>().format("%016llx", static_cast<unsigned long long>(digest)).view();
    return line + '\n';
}

} // namespace

bool Known::readLine(const std::string& line) {
    constexpr std::size_t digits = 16;
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
    if (second == std::string::npos)
        return false;
    const std::string id = line.substr(0, first);
    const std::string word = id.substr(0, id.find(':'));
    const std::string_view rest = std::string_view(line).substr(second + 1);
    if (id.find(':') == std::string::npos || (word != "unread" && findkind(word) == 0) ||
        line.substr(first + 1, second - first - 1) != std::to_string(rest.size() / digits))
        return false;
    Digests& digests = entries[id];
    for (std::size_t at = 0; at < rest.size(); at += digits) {
        std::uint64_t digest = 0;
        const std::string_view word16 = rest.substr(at, digits);
        const char* const end = word16.data() + word16.size();
        if (word16.size() < digits || std::from_chars(word16.data(), end, digest, 16).ptr != end)
            return false;
        digests.push_back(digest);
    }
    std::ranges::sort(digests);
    return true;
}

std::string Known::read(const std::string& path, const std::string& directory) {
    std::string content;
    if (std::string failure = readTextFile(path, content); !failure.empty())
        return failure;
    std::istringstream lines(content);
    std::string line;
    bool own = true;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.starts_with('@'))
            own = line.substr(1) == encodedforid(directory);
        else if (own && !line.empty() && line[0] != '#' && !readLine(line))
            return path + ": Line " + std::to_string(number) +
                   " is no id with a number and digests, as --write-known writes them: '" +
                   line.substr(0, line.find('\t')) + "'";
    }
    return {};
}

const Known::Standing& Known::standing(const TSXdatabase& database, int row) const {
    static const Standing none;
    if (entries.empty())
        return none;
    rows.resize(static_cast<std::size_t>(database.problemcount) + 1);
    std::optional<Standing>& found = rows[static_cast<std::size_t>(row)];
    if (found)
        return *found;
    const TSXproblem& problem = *database.getproblem(row);
    found.emplace(Standing{problem.id()});
    const auto entry = entries.find(found->id);
    if (entry == entries.end())
        return *found;
    const Digests now = digestsOf(problem);
    Digests both;
    std::ranges::set_intersection(now, entry->second, std::back_inserter(both));
    found->known = static_cast<int>(both.size());
    found->fresh = static_cast<int>(now.size() - both.size());
    return *found;
}

bool Known::has(const Unread& thing) const {
    return !entries.empty() && entries.count(idOf(thing)) != 0;
}

int Known::unknownIn(const TSXdatabase& database) const {
    int count = 0;
    for (int row = 1; row <= database.problemcount; ++row)
        count += has(database, row) ? 0 : 1;
    return count;
}

int Known::unreadIn(const TSXdatabase& database) const {
    return static_cast<int>(std::ranges::count_if(database.unread, [this](const Unread& thing) {
        return thing.weight != Unread::told && !has(thing);
    }));
}

std::vector<std::string> Known::goneFrom(const TSXdatabase& database) const {
    if (entries.empty())
        return {};
    std::map<std::string, std::size_t> left;
    for (int row = 1; row <= database.problemcount; ++row)
        left[standing(database, row).id] = static_cast<std::size_t>(standing(database, row).known);
    for (const Unread& thing : database.unread)
        left[idOf(thing)] = 1;
    std::vector<std::string> gone;
    for (const auto& [id, digests] : entries)
        if (const auto found = left.find(id); found == left.end())
            gone.push_back("there is no such problem (any more): " + id);
        else if (found->second < digests.size())
            gone.push_back(id + ": " + std::to_string(digests.size() - found->second) + " of " +
                           std::to_string(digests.size()) + " known have gone");
    return gone;
}

std::string knownLines(const TSXdatabase& database) {
    std::string text;
    for (int row = 1; row <= database.problemcount; ++row)
        text += lineOf(database.getproblem(row)->id(), digestsOf(*database.getproblem(row)));
    for (const Unread& thing : database.unread)
        if (thing.weight != Unread::told)
            text += lineOf(idOf(thing), {Digest().add(idOf(thing)).value});
    return text;
}
