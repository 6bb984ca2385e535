#include "undo/restoring.h"

#include <algorithm>

#include "platform/system/bytestream.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/plainfile.h"
#include "platform/system/signalhold.h"
#include "undo/content.h"
#include "undo/fields.h"
#include "undo/place.h"

Restoring::Restoring(const RestorePlan& plan, const RestoreOptions& options, RestoreResult& result)
    : plan_(plan), options_(options), result_(result),
      writer_(options.databaseDirectory, options.ownUndoFile) {
    for (const std::string& name : plan.leftNames)
        leftIn_.insert(parentOf(name));
}

void Restoring::run() {
    const SignalHold untilRestored;
    if (options_.keepUndo && !keep()) {
        result_.refused = "Nothing was restored, since it could not be kept in an undo file of its own: " +
                          writer_.failure();
        return;
    }
    result_.ownUndoFile = writer_.path();
    for (const FileRestore& file : plan_.files)
        if (isTakenUp(file))
            restoreFile(file);
    for (const FileRestore& file : plan_.files)
        if (isTakenUp(file) && file.recreate != nullptr)
            tellLostNames(*file.recreate);
    for (const UndoItem* directory : plan_.directories)
        if (leftIn_.count(directory->file) == 0)
            restoreTimes(*directory);
    if (!writer_.path().empty() && !writer_.finish())
        result_.left.push_back(writer_.failure());
}

bool Restoring::keep() {
    for (const FileRestore& file : plan_.files)
        if (isTakenUp(file) && !addFile(file))
            return false;
    if (!writer_.commit())
        return false;
    if (!writer_.path().empty())
        removeOldUndoFiles();
    return true;
}

// Of a file of which something was left, the fields that have not changed since come back, but no file comes
// or goes.
bool Restoring::isTakenUp(const FileRestore& file) const {
    return plan_.leftNames.count(file.name) == 0 || (!file.remove && file.recreate == nullptr);
}

bool Restoring::addFile(const FileRestore& file) {
    if (file.remove && !writer_.addDeletion(file.name))
        return false;
    if (file.recreate != nullptr)
        return writer_.addMaking(file.name);
    return (file.fields.empty() && file.size < 0) || writer_.addKeys(file.name, file.fields, file.size);
}

std::string Restoring::under(const std::string& name) const {
    return name.empty() ? options_.databaseDirectory : options_.databaseDirectory + "/" + name;
}

void Restoring::restoreFile(const FileRestore& file) {
    SetLastError(ERROR_SUCCESS);
    const bool done = (!file.remove || remove(file)) &&
                      (file.recreate == nullptr ? rewrite(file) : recreate(file)) && verify(file);
    if (done && giveBackState(file))
        return;
    result_.left.push_back(under(file.name) + ": " + (done ? "its attributes" : "it") +
                           " could not be brought back (" + errorText(GetLastError()) + ")");
    leftIn_.insert(parentOf(file.name));
}

bool Restoring::remove(const FileRestore& file) {
    EntryState state;
    const std::string path = under(file.name);
    const bool removed =
        readEntry(path, OfLink::itself, state) &&
        (state.kind == EntryState::directory ? removeDirectory(path) : removeFile(path.c_str()));
    if (removed)
        result_.changes.push_back({Change::deletion, file.name, 0, 0, "", "", ""});
    return removed && syncDirectoryOf(path.c_str());
}

bool Restoring::recreate(const FileRestore& file) {
    const std::string path = under(file.name);
    const UndoItem& item = *file.recreate;
    bool made = false;
    if (item.state.kind == EntryState::directory) {
        made = CreateDirectoryA(path.c_str()) != 0;
    } else if (item.state.kind == EntryState::symbolic) {
        made = makeLink(path, file.content);
    } else if (!file.secondOf.empty()) {
        made = addName(path, under(file.secondOf));
    } else {
        const PrivateFiles guard;
        ByteStream stream;
        made = stream.open(path.c_str(), OpenMode::recreate) &&
               (file.content.empty() || stream.write(file.content.data(), file.content.size()) > 0) &&
               stream.close();
    }
    if (made)
        result_.changes.push_back({Change::making, file.name, 0, 0, "", "", ""});
    return made && syncDirectoryOf(path.c_str());
}

bool Restoring::rewrite(const FileRestore& file) {
    if (file.fields.empty() && file.size < 0)
        return true;
    ByteStream stream;
    if (!stream.open(under(file.name).c_str(), OpenMode::update))
        return false;
    for (const NewField& field : file.fields) {
        if (!stream.seek(field.offset) ||
            stream.write(field.after.data(), field.after.size()) != field.after.size())
            return false;
        result_.changes.push_back({Change::key, file.name, field.record, field.offset, keyIn(field.before),
                                   keyIn(field.after), field.before});
    }
    return (file.size < 0 || cutFile(under(file.name), file.size)) && stream.sync() && stream.close();
}

void Restoring::tellLostNames(const UndoItem& item) {
    EntryState now;
    if (item.state.kind == EntryState::plain && item.state.names > 1 &&
        (!readEntry(under(item.file), OfLink::itself, now) || now.names < 2))
        result_.left.push_back(under(item.file) + ": it had more names, and is a file of its own now");
}

// The disk is asked what it has.
bool Restoring::verify(const FileRestore& file) {
    std::string content;
    const bool written = file.recreate == nullptr ? !file.fields.empty() || file.size >= 0
                                                  : file.recreate->state.kind == EntryState::plain;
    if (!written || !file.secondOf.empty())
        return true;
    if (!readContent(under(file.name), content))
        return false;
    SetLastError(ERROR_IO_DEVICE);
    return checksumOf(content) == file.checksum;
}

bool Restoring::giveBackState(const FileRestore& file) {
    const std::string path = under(file.name);
    EntryState now;
    if (file.state == nullptr || !file.secondOf.empty())
        return true;
    if (file.attributes == nullptr)
        return giveTimes(path, *file.state) && syncEntry(path);
    if (!readEntry(path, OfLink::itself, now))
        return false;
    return giveState(path, *file.state, file.attributes->attributes) &&
           (now.kind == EntryState::symbolic || syncEntry(path));
}

void Restoring::restoreTimes(const UndoItem& directory) {
    EntryState now;
    const std::string path = under(directory.file);
    const bool known = readEntry(path, OfLink::target, now);
    if (known && now.kind != EntryState::directory)
        return; // it was made, and has gone
    if (!known || !giveTimes(path, directory.state) || !syncEntry(path))
        result_.left.push_back(path + ": its times could not be brought back (" + errorText(GetLastError()) +
                               ")");
}
