#include "changes/change.h"

#include <algorithm>
#include <utility>

Change deletionof(std::string file, const FileState& judged) {
    Change change;
    change.kind = Change::deletion;
    change.file = std::move(file);
    change.state = change.judged = judged;
    change.parts = {Standing::before};
    return change;
}

Change makingof(std::string file, FileState::Kind kind, FileContent content) {
    Change change;
    change.kind = Change::making;
    change.file = std::move(file);
    change.state.kind = kind;
    change.state.size = content.size;
    change.content = std::move(content);
    change.parts = {Standing::before};
    return change;
}

void addfield(Change& change, std::int32_t record, std::int64_t offset, std::string_view before,
              std::string_view after) {
    Encoder to(std::move(change.fields));
    to.number(record).number(offset).field(before).field(after);
    change.fields = std::move(to.bytes);
    ++change.fieldcount;
}

KeyField readfield(Decoder& from) {
    KeyField field;
    field.record = from.number<std::int32_t>();
    field.offset = from.number<std::int64_t>();
    field.before = from.field();
    field.after = from.field();
    return field;
}

std::string parentof(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "" : name.substr(0, slash);
}

std::string keyin(std::string_view field) {
    constexpr std::size_t textStart = 8;
    Decoder from(field);
    const auto length = from.number<std::uint32_t>();
    const std::string_view text = field.substr(std::min(textStart, field.size()), length);
    return std::string(text.substr(0, text.find('\0')));
}

std::string describe(const ChangeLine& line) {
    if (line.kind == Change::deletion)
        return "*** Deleted '" + line.file + "' ***";
    if (line.kind == Change::making)
        return "*** Made '" + line.file + "' ***";
    return "*** Changed key '" + line.oldkey + "' to '" + line.newkey + "' in '" + line.file + "', record " +
           std::to_string(line.record) + " ***";
}

bool ChangeLines::next(ChangeLine& line) {
    for (; !rest_.empty(); rest_ = rest_.subspan(1), inside_ = false) {
        const Change& change = rest_.front();
        line.kind = change.kind;
        line.file = change.file;
        if (change.kind != Change::keys) {
            rest_ = rest_.subspan(1);
            return true;
        }
        if (!std::exchange(inside_, true))
            fields_ = Decoder(change.fields);
        while (fields_.good && !fields_.rest.empty()) {
            const KeyField field = readfield(fields_);
            if (!field.isChange())
                continue;
            line.record = field.record;
            line.offset = field.offset;
            line.oldkey = keyin(field.before.whole());
            line.newkey = keyin(field.after.whole());
            return true;
        }
    }
    return false;
}

std::size_t countlines(std::span<const Change> changes) {
    ChangeLines lines(changes);
    ChangeLine line;
    std::size_t count = 0;
    while (lines.next(line))
        ++count;
    return count;
}

std::string summaryof(std::uint32_t keys, std::uint32_t deletions, std::uint32_t makings) {
    const struct {
        std::uint32_t count;
        const char *one, *many;
    } parts[] = {{keys, " key changed", " keys changed"},
                 {deletions, " file deleted", " files deleted"},
                 {makings, " made", " made"}};
    std::string text;
    for (const auto& part : parts)
        if (part.count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(part.count) +
                    (part.count == 1 ? part.one : part.many);
    return text.empty() ? "nothing changed" : text;
}
