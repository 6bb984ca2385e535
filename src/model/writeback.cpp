// How the changed keys of a data file reach the disk. Nothing is written that was not compared with what was
// read, and nothing counts as written that the disk has not confirmed.
#include <algorithm>

#include "files/binfile.h"
#include "model/database.h"
#include "model/datafile.h"
#include "platform/system/errors.h"
#include "platform/system/messagebox.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/plan.h"
#include "reporting/report.h"

namespace {

constexpr int fieldsize = 8 + keycapacity;

constexpr const char* changedmeanwhile =
    "Another program has changed it since it was read.\n"
    "What stands there was left alone. Load the database again, and then repeat the change.";
constexpr const char* trylater =
    "What could not be written stays marked as changed: remove the cause, and save again.";

// Whether these are the bytes of the key field as it is to be.
bool isnewfield(std::string_view bytes, const Change& change) {
    constexpr std::size_t head = 8;
    return bytes.size() == fieldsize &&
           TSXbinfile::intin(bytes, 0, -1) == static_cast<std::int32_t>(change.newkey.size()) &&
           TSXbinfile::intin(bytes, 4, -1) == keycapacity &&
           bytes.substr(head, change.newkey.size()) == change.newkey &&
           bytes.find_first_not_of('\0', head + change.newkey.size()) == std::string_view::npos;
}

std::string untold(const TSXbinfile& file) {
    return errorText(file.readfailure()) + "\n" + trylater;
}

// Why a file does not look as it did when it was read: what the disk does not tell, no other program has
// done.
std::string whyanother(const TSXbinfile& file, const std::string& what) {
    return file.readfailure() != 0 ? untold(file) : what + changedmeanwhile;
}

// Why a path does not lead into the database, as far as that is known.
std::string whyoutside(const char* link) {
    return GetLastError() != ERROR_SUCCESS ? unwritten() : link;
}

// Whether the bytes of a field give that key, as the reader takes it. The file may end behind the text, or
// where there is none behind its length.
bool givekey(std::string_view bytes, const std::string& key) {
    const std::int32_t length = TSXbinfile::intin(bytes, 0, -1);
    const auto taken = static_cast<std::size_t>(std::clamp(length, 0, maxkeylength));
    const std::string_view text = bytes.substr(std::min<std::size_t>(8, bytes.size()), taken);
    return length >= 0 && (length == 0 || bytes.size() >= 8 + taken) &&
           text.substr(0, text.find('\0')) == key;
}

// Fills in what stands at a key field now. Nothing, or why it must be left.
std::string lookat(TSXbinfile& file, Change& change) {
    if (change.offset <= 0)
        return "The place of record " + std::to_string(change.record) + " in the file is not known.\n" +
               trylater;
    change.fieldbefore = file.bytesat(change.offset, fieldsize);
    if (change.fieldbefore.size() < fieldsize && file.readfailure() != 0)
        return untold(file);
    if (isnewfield(change.fieldbefore, change)) // by an earlier save that could not be confirmed
        return {};
    if (!givekey(change.fieldbefore, change.oldkey))
        return "The key of record " + std::to_string(change.record) + " is no longer '" + change.oldkey +
               "'. " + changedmeanwhile;
    const std::int32_t capacity = TSXbinfile::intin(change.fieldbefore, 4, keycapacity);
    if (capacity != keycapacity)
        return "The key field of record " + std::to_string(change.record) + " has the capacity " +
               std::to_string(capacity) + " in place of " + std::to_string(keycapacity) +
               ": a new key would not fill it, or reach beyond it.\n"
               "It was left alone. Change this key with the program that made the file.";
    return {};
}

// Writes the changes of one file until a write fails. written gets those that were made. The first obstacle,
// if any.
std::string writefields(TSXbinfile& file, Change* first, const Change* last, std::vector<Change*>& written) {
    std::string obstacle;
    for (Change* change = first; change != last; ++change) {
        if (file.bytesat(change->offset, fieldsize) != change->fieldbefore) {
            obstacle =
                whyanother(file, "The key of record " + std::to_string(change->record) + " is another now. ");
            continue;
        }
        if (file.seek(change->offset) != 0 || file.writefield(change->newkey, keycapacity) != 1)
            return unwritten();
        written.push_back(change);
    }
    return obstacle;
}

// Puts them on the disk itself and reads them back.
bool confirm(TSXbinfile& file, const std::vector<Change*>& changes) {
    if (file.sync() != 1)
        return false;
    SetLastError(ERROR_IO_DEVICE);
    return std::all_of(changes.begin(), changes.end(), [&](const Change* change) {
        return isnewfield(file.bytesat(change->offset, fieldsize), *change);
    });
}

std::string message(const char* form, const TSXdatafile& file, const std::string& reason) {
    return reason.empty() ? reason : Text<1100>().format(form, file.path.c_str()).c_str() + ("\n" + reason);
}

constexpr const char* inform = "Could not write in file '%s'";
constexpr const char* toform = "Could not write to file '%s'";

} // namespace

std::string unwritten() {
    return errorText(GetLastError()) + "\n" + trylater;
}

// Opens the file for writing if it is the one that was read. Nothing, or why it must be left.
std::string TSXdatafile::opensame(TSXbinfile& file) const {
    if (file.openupdate(path) != 1)
        return unwritten();
    std::string obstacle;
    if (!leadsInto(path.view(), database.directory.view()))
        obstacle =
            whyoutside("A link leads to it out of the directory of the database, and nothing is written "
                       "there.\n"
                       "Put the file itself in place of the link, and save again.");
    else if (file.state().identity != onread.identity)
        obstacle = whyanother(file, "");
    if (!obstacle.empty())
        file.close();
    return obstacle;
}

void TSXdatafile::collectkeys(TSXbinfile& file, std::vector<Change>& group, std::string& obstacle) const {
    const std::string diskname = database.diskname(path.view());
    for (std::size_t i = 1; i < keys.size(); ++i) {
        if (keydirty[i] != 1)
            continue;
        Change change{Change::key,
                      diskname,
                      static_cast<std::int32_t>(i),
                      keypos[i],
                      std::string(keysondisk[i]),
                      std::string(keys[i]),
                      {}};
        const std::string left = lookat(file, change);
        if (left.empty())
            group.push_back(std::move(change));
        else if (obstacle.empty())
            obstacle = left;
    }
}

std::string TSXdatafile::collectchanges(std::vector<Change>& group) {
    std::string obstacle;
    if (anydirty() == 0)
        return obstacle;
    if (ondisk == 0) {
        obstacle = whynotmade();
        if (obstacle.empty())
            group.push_back(filechange(Change::making, database.diskname(path.view())));
        return message(toform, *this, obstacle);
    }
    TSXbinfile file;
    obstacle = opensame(file);
    if (obstacle.empty()) {
        const std::size_t before = group.size();
        collectkeys(file, group, obstacle);
        if (file.close() == 0) {
            group.resize(before);
            obstacle = unwritten();
        }
    }
    return message(inform, *this, obstacle);
}

std::string TSXdatafile::whynotmade() const {
    if (pathExists(path.view()))
        return "Another file has that name by now.\nLoad the database again, and then repeat the change.";
    if (const unsigned number = obstacleToChange(path); number != ERROR_SUCCESS)
        return errorText(number) + "\n" + trylater;
    const std::string holder = path.c_str();
    if (!leadsInto(holder.substr(0, holder.rfind('/')), database.directory.view()))
        return whyoutside(
            "A link leads to its directory out of the directory of the database, and nothing is "
            "made there.\n"
            "Put the directory itself in place of the link, and save again.");
    return {};
}

std::string TSXdatafile::makechanges(Change* first, Change* last) {
    if (database.planning)
        std::for_each(first, last, [this](Change& change) { database.notechange(change); });
    if (first == last || database.planning)
        return {};
    if (first->kind == Change::making)
        return message(toform, *this, writewhole());
    TSXbinfile file;
    std::string obstacle = opensame(file);
    if (obstacle.empty()) {
        std::vector<Change*> written;
        obstacle = writefields(file, first, last, written);
        const bool confirmed = confirm(file, written);
        const FileState state = file.state();
        if (file.close() == 0 || !confirmed || state == FileState())
            return message(inform, *this, unwritten());
        onread = state;
        for (Change* change : written)
            settle(*change);
    }
    return message(inform, *this, obstacle);
}

void TSXdatafile::settle(Change& change) {
    const auto record = static_cast<std::size_t>(change.record);
    keydirty[record] = 0;
    keysondisk[record] = {};
    database.notechange(change);
}

std::string TSXdatafile::endmaking(Change& change, const std::string& obstacle) {
    if (obstacle.empty()) {
        database.notechange(change);
        return {};
    }
    if (stateOf(path) == onread) // else another program has written it, or put its own in its place
        removeFile(path);
    ondisk = 0;
    keypos.assign(keypos.size(), -1);
    keydirty.assign(keydirty.size(), 1);
    keydirty[0] = 0;
    return message(toform, *this, obstacle);
}

std::string TSXdatafile::writewhole() {
    return {};
}

void TSXdatafile::writeback() {
    std::vector<Change> group;
    const auto tell = [](const std::string& left) {
        if (!left.empty())
            report(left.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
        return left.empty();
    };
    tell(collectchanges(group));
    const bool making = !group.empty() && group[0].kind == Change::making && !database.planning;
    if (tell(makechanges(group.data(), group.data() + group.size())) && making)
        tell(endmaking(group[0], syncDirectoryOf(path) ? std::string() : unwritten()));
    database.addnoted(group);
}
