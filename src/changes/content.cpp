#include "changes/content.h"

#include <algorithm>
#include <utility>

#include <zlib.h>

#include "changes/bytes.h"

namespace {

constexpr std::int64_t pieceSize = 262144;
using Patches = std::map<std::int64_t, std::string>;

// Visits the bytes of a file from start to end in pieces, holes left out.
Failure visitData(const File& file, std::int64_t start, std::int64_t end, const FileContent::Visit& visit) {
    std::string bytes;
    std::int64_t dataEnd = start;
    while (start < end) {
        if (start >= dataEnd) {
            if (const Failure failure = file.data(start, start, dataEnd))
                return failure;
            continue;
        }
        const std::int64_t wanted = std::min({pieceSize, dataEnd - start, end - start});
        if (const Failure failure = file.read(start, static_cast<std::size_t>(wanted), bytes))
            return failure;
        if (static_cast<std::int64_t>(bytes.size()) < wanted) // it has become shorter
            return {ERROR_FILE_INVALID};
        if (const Failure failure = visit(start, bytes))
            return failure;
        start += wanted;
    }
    return {};
}

// Patches on their way through the pieces: those in front of a piece are visited as pieces of their own.
class Patcher {
public:
    Patcher(const Patches& patches, const FileContent::Visit& visit) : visit_(visit), rest_(patches) {}

    Failure piece(std::int64_t offset, std::string_view bytes) {
        const std::int64_t end = offset + static_cast<std::int64_t>(bytes.size());
        if (const Failure failure = before(offset))
            return failure;
        std::string mixed(bytes);
        while (!rest_.empty() && rest_.begin()->first < end) {
            const auto [at, patch] = *rest_.begin();
            rest_.erase(rest_.begin());
            const auto taken = std::min(patch.size(), static_cast<std::size_t>(end - at));
            mixed.replace(static_cast<std::size_t>(at - offset), taken, patch, 0, taken);
            if (taken < patch.size())
                rest_[end] = patch.substr(taken);
        }
        return visit_(offset, mixed);
    }

    // Visits the patches, or their parts, that lie in front of an offset.
    Failure before(std::int64_t offset) {
        while (!rest_.empty() && rest_.begin()->first < offset) {
            const auto [at, patch] = *rest_.begin();
            rest_.erase(rest_.begin());
            const auto taken = std::min(patch.size(), static_cast<std::size_t>(offset - at));
            if (taken < patch.size())
                rest_[offset] = patch.substr(taken);
            if (const Failure failure = visit_(at, std::string_view(patch).substr(0, taken)))
                return failure;
        }
        return {};
    }

private:
    const FileContent::Visit& visit_;
    Patches rest_;
};

// Zeros count as a hole, so that it does not matter where a file has holes.
class BlockChecksum {
public:
    void add(std::int64_t offset, std::string_view bytes) {
        while (!bytes.empty()) {
            if (offset / blockSize != number_)
                flush(offset / blockSize);
            const std::string_view taken =
                bytes.substr(0, static_cast<std::size_t>(blockSize - offset % blockSize));
            block_.replace(static_cast<std::size_t>(offset % blockSize), taken.size(), taken);
            offset += static_cast<std::int64_t>(taken.size());
            bytes.remove_prefix(taken.size());
        }
    }
    std::uint32_t end() {
        flush(0);
        return checksum_;
    }

private:
    static constexpr std::int64_t blockSize = 4096;

    void flush(std::int64_t next) {
        if (block_.find_first_not_of('\0') != std::string::npos)
            checksum_ = checksumOf(block_, checksumOf(Encoder().number(number_).bytes, checksum_));
        block_.assign(blockSize, '\0');
        number_ = next;
    }

    std::int64_t number_ = 0;
    std::string block_ = std::string(blockSize, '\0');
    std::uint32_t checksum_ = 0;
};

// Whether the file has no other bytes than zeros from start to end.
Failure lookForZeros(const File& file, std::int64_t start, std::int64_t end, bool& zeros) {
    return visitData(file, start, end, [&](std::int64_t, std::string_view bytes) {
        zeros = zeros && bytes.find_first_not_of('\0') == std::string_view::npos;
        return Failure();
    });
}

} // namespace

FileContent contentOf(std::string bytes) {
    const auto size = static_cast<std::int64_t>(bytes.size());
    return {size, [bytes = std::move(bytes)](const FileContent::Visit& visit) {
                return bytes.empty() ? Failure() : visit(0, bytes);
            }};
}

FileContent contentOf(std::shared_ptr<const File> file, std::int64_t size) {
    return {size, [file = std::move(file), size](const FileContent::Visit& visit) {
                return visitData(*file, 0, size, visit);
            }};
}

FileContent patched(FileContent content, std::map<std::int64_t, std::string> patches) {
    if (patches.empty())
        return content;
    const std::int64_t size = content.size;
    return {size,
            [content = std::move(content), patches = std::move(patches)](const FileContent::Visit& visit) {
                Patcher patcher(patches, visit);
                const Failure failure = content.pieces([&](std::int64_t offset, std::string_view bytes) {
                    return patcher.piece(offset, bytes);
                });
                return failure ? failure : patcher.before(content.size);
            }};
}

Failure writeContent(const FileContent& content, const File& file) {
    const Failure failure = content.pieces(
        [&](std::int64_t offset, std::string_view bytes) { return file.write(offset, bytes); });
    return failure ? failure : file.cut(content.size);
}

Failure compare(const File& file, const FileContent& content, Likeness& likeness) {
    FileState state;
    likeness = Likeness::other;
    if (const Failure failure = file.state(state))
        return failure;
    const std::int64_t end = std::min(state.size, content.size);
    std::int64_t reached = 0;
    bool equal = state.size <= content.size;
    std::string found;
    Failure failure = content.pieces([&](std::int64_t offset, std::string_view bytes) {
        const std::int64_t start = std::min(offset, end);
        if (Failure failed = lookForZeros(file, reached, start, equal))
            return failed;
        const auto size =
            static_cast<std::size_t>(std::clamp<std::int64_t>(end - start, 0, std::int64_t(bytes.size())));
        reached = start + static_cast<std::int64_t>(size);
        const Failure failed = file.read(start, size, found);
        equal = equal && found == bytes.substr(0, size);
        return failed;
    });
    if (!failure)
        failure = lookForZeros(file, reached, end, equal);
    if (equal)
        likeness = state.size == content.size ? Likeness::same : Likeness::begun;
    return failure;
}

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before) {
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

Failure checksumOf(const FileContent& content, std::uint32_t& checksum) {
    BlockChecksum blocks;
    const Failure failure = content.pieces([&](std::int64_t offset, std::string_view bytes) {
        blocks.add(offset, bytes);
        return Failure();
    });
    checksum = blocks.end();
    return failure;
}
