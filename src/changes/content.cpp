#include "changes/content.h"

#include <algorithm>
#include <utility>

#include <zlib.h>

namespace {

constexpr std::int64_t pieceSize = 262144;

// Visits the bytes of a file from start to end in pieces, holes left out.
Failure visitData(const File& file, std::int64_t start, std::int64_t end, const FileContent::Visit& visit) {
    std::string bytes;
    std::int64_t dataEnd = start;
    while (start < end) {
        if (start >= dataEnd) {
            const Failure failure = file.data(start, start, dataEnd);
            if (failure || (start >= dataEnd && start < end)) // it has become shorter
                return failure ? failure : Failure{ERROR_FILE_INVALID};
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

// The checksum of so many zero bytes.
std::uint32_t checksumOfZeros(std::int64_t count) {
    if (count < 2)
        return checksumOf(std::string(static_cast<std::size_t>(count), '\0'));
    const std::uint32_t half = checksumOfZeros(count / 2);
    const auto whole = static_cast<std::uint32_t>(crc32_combine(half, half, count / 2));
    return count % 2 == 0 ? whole : checksumOf(std::string(1, '\0'), whole);
}

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

Failure wholeOf(const FileContent& content, std::string& bytes) {
    bytes.clear();
    return content.pieces([&](std::int64_t, std::string_view piece) {
        bytes += piece;
        return Failure();
    });
}

FileContent patched(FileContent content, std::map<std::int64_t, std::string> patches) {
    constexpr std::int64_t longest = 255;
    const std::int64_t size = content.size;
    const auto patch = [patches = std::move(patches)](std::int64_t offset, std::string& bytes) {
        const std::int64_t end = offset + static_cast<std::int64_t>(bytes.size());
        for (auto at = patches.lower_bound(offset - longest); at != patches.end() && at->first < end; ++at) {
            const std::int64_t from = std::max(at->first, offset);
            const std::int64_t to = std::min(at->first + static_cast<std::int64_t>(at->second.size()), end);
            if (from < to)
                bytes.replace(static_cast<std::size_t>(from - offset), static_cast<std::size_t>(to - from),
                              at->second, static_cast<std::size_t>(from - at->first),
                              static_cast<std::size_t>(to - from));
        }
    };
    return {size, [content = std::move(content), patch](const FileContent::Visit& visit) {
                return content.pieces([&](std::int64_t offset, std::string_view bytes) {
                    std::string mixed(bytes);
                    patch(offset, mixed);
                    return visit(offset, mixed);
                });
            }};
}

Failure writeContent(const FileContent& content, const File& file) {
    const Failure failure = content.pieces(
        [&](std::int64_t offset, std::string_view bytes) { return file.write(offset, bytes); });
    return failure ? failure : file.cut(content.size);
}

Failure compare(const File& file, const FileContent& content, Standing& standing) {
    const std::int64_t size = file.opened().size;
    std::int64_t reached = 0;
    bool equal = size <= content.size;
    std::string found; // where the file ends, fewer bytes
    Failure failure = content.pieces([&](std::int64_t offset, std::string_view bytes) {
        Failure failed = lookForZeros(file, reached, std::min(offset, size), equal);
        if (!failed)
            failed = file.read(offset, bytes.size(), found);
        equal = equal && bytes.starts_with(found);
        reached = offset + static_cast<std::int64_t>(bytes.size());
        return failed;
    });
    failure = failure ? failure : lookForZeros(file, reached, size, equal);
    standing = !equal ? Standing::other : size == content.size ? Standing::after : Standing::torn;
    return failure;
}

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before) {
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

Failure checksumOf(const FileContent& content, std::uint32_t& checksum) {
    std::int64_t reached = 0;
    checksum = 0;
    const auto passHole = [&](std::int64_t end) {
        const std::int64_t size = end - reached;
        checksum = static_cast<std::uint32_t>(crc32_combine(checksum, checksumOfZeros(size), size));
        reached = end;
    };
    const Failure failure = content.pieces([&](std::int64_t offset, std::string_view bytes) {
        passHole(offset);
        checksum = checksumOf(bytes, checksum);
        reached += static_cast<std::int64_t>(bytes.size());
        return Failure();
    });
    passHole(content.size);
    return failure;
}
