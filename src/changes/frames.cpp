#include "changes/frames.h"

#include "changes/bytes.h"

namespace {

constexpr std::size_t frameHead = 9;

std::string headOf(FrameKind kind, std::uint64_t position, std::string_view bytes) {
    Encoder to;
    to.number(static_cast<std::uint8_t>(kind)).number(static_cast<std::uint32_t>(bytes.size()));
    const std::uint32_t start = checksumOf(Encoder(to.bytes).number(position).bytes);
    to.number(checksumOf(bytes, start));
    return to.bytes;
}

} // namespace

Failure Frames::next(Frame& frame) {
    std::string head;
    const std::uint64_t left = end_ - position_;
    if (const Failure failure = file_.read(static_cast<std::int64_t>(position_), frameHead, head))
        return failure;
    Decoder from(head);
    frame.kind = static_cast<FrameKind>(from.number<std::uint8_t>());
    const auto length = from.number<std::uint32_t>();
    if (head.size() < frameHead || left < frameHead || length > left - frameHead)
        return {ERROR_INVALID_DATA};
    const auto start = static_cast<std::int64_t>(position_ + frameHead);
    if (const Failure failure = file_.read(start, length, frame.bytes))
        return failure;
    if (frame.bytes.size() < length || frame.kind < FrameKind::keys || frame.kind > FrameKind::groupend ||
        headOf(frame.kind, position_, frame.bytes) != head)
        return {ERROR_INVALID_DATA};
    position_ += frameHead + length;
    frame.end = position_;
    return {};
}

Failure visitpieces(const File& file, std::uint64_t start, std::uint64_t end,
                    const FileContent::Visit& visit) {
    Frames frames(file, start, end);
    Frame frame;
    while (!frames.atend()) {
        if (const Failure failure = frames.next(frame))
            return failure;
        if (frame.kind != FrameKind::piece)
            break;
        Decoder from(frame.bytes);
        const auto offset = from.number<std::int64_t>();
        if (from.rest.empty())
            continue;
        if (const Failure failure = visit(offset, from.rest))
            return failure;
    }
    return {};
}

void FrameWriter::add(FrameKind kind, std::string_view bytes) {
    constexpr std::size_t enough = 1048576;
    buffer_ += headOf(kind, static_cast<std::uint64_t>(position_) + buffer_.size(), bytes);
    buffer_ += bytes;
    if (buffer_.size() >= enough)
        flush();
}

Failure FrameWriter::end(std::int64_t& position) {
    flush();
    position = position_;
    return failure_;
}

void FrameWriter::flush() {
    if (!failure_)
        failure_ = file_.write(position_, buffer_);
    position_ += static_cast<std::int64_t>(buffer_.size());
    buffer_.clear();
}
