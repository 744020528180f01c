#include "regf_file/hive_file.h"

#include <algorithm>

#include "base/text.h"
#include "hostfile/replacement.h"
#include "regf/bytes.h"
#include "regf/layout.h"
#include "regf/recovery.h"

namespace regf {

using hostfile::attempt;
using hostfile::open_regular;
using hostfile::OpenFile;
using hostfile::Replacement;
using hostfile::system_error;

namespace {

/// Less than `size` bytes only where the file ends before.
Result<Bytes> read_front(int file, size_t size, const std::string& name) {
    Bytes bytes(size);
    for (size_t done = 0; done < size;) {
        const ssize_t got = attempt(
            "read", [&] { return pread(file, bytes.data() + done, size - done, static_cast<off_t>(done)); });
        if (got < 0) return system_error(name, "cannot be read");
        if (got == 0) bytes.resize(size = done);
        done += static_cast<size_t>(got);
    }
    return bytes;
}

Result<Bytes> read_all(int file, const std::string& name) {
    struct stat status {};
    if (attempt("fstat", [&] { return fstat(file, &status); }) != 0)
        return system_error(name, "cannot be examined");
    if (static_cast<uint64_t>(status.st_size) > largest_file)
        return Error{ErrorKind::unsupported, name + ": larger than any hive"};
    return read_front(file, static_cast<size_t>(status.st_size), name);
}

HiveStamp stamp_of(uint64_t size, ByteView head) {
    if (head.size() < base_block::checksum + 4) return {.size = size};
    return {size, get32(head, base_block::primary_sequence), get32(head, base_block::secondary_sequence),
            get32(head, base_block::checksum)};
}

FileIdentity identity_of(const struct stat& status, ByteView head) {
    constexpr uint64_t second = 1'000'000'000;
    // A hostile disk's times run beyond 64 bits: they wrap, and still tell one state from the next.
    const uint64_t modified =
        static_cast<uint64_t>(status.st_mtim.tv_sec) * second + static_cast<uint64_t>(status.st_mtim.tv_nsec);
    return {status.st_dev, status.st_ino, static_cast<int64_t>(modified),
            stamp_of(static_cast<uint64_t>(status.st_size), head)};
}

Result<FileIdentity> identify_open(const OpenFile& opened, const std::string& name) {
    const auto head = read_front(opened.file.number(), base_block_size, name);
    if (!head) return head.error();
    return identity_of(opened.status, *head);
}

/// The log files of a hive, by name without regard to case: `X.LOG`, `X.LOG1`, `X.LOG2`.
Result<std::vector<Log>> read_logs(const HostPlace& place) {
    auto names = hostfile::names_in(place.folder.number());
    if (!names) return Error{names.error().kind, place.name + ": " + names.error().message};
    const std::string hive = text::lower(place.name);
    std::erase_if(*names, [&](const std::string& any) {
        const std::string name = text::lower(any);
        return name != hive + ".log" && name != hive + ".log1" && name != hive + ".log2";
    });
    std::sort(names->begin(), names->end(),
              [](const auto& a, const auto& b) { return text::lower(a) < text::lower(b); });
    std::vector<Log> logs;
    for (const std::string& name : *names) {
        const auto opened = open_regular({place.folder.duplicate(), name}, O_RDONLY);
        if (!opened) continue;  // a log that cannot be read is none: without it the hive is refused
        auto bytes = read_all(opened->file.number(), name);
        if (bytes) logs.push_back({name, std::move(*bytes)});
    }
    return logs;
}

}  // namespace

Result<HiveFile> read_hive(const HostPlace& place, const FileLock& lock) {
    struct stat status {};
    if (attempt("fstat", [&] { return fstat(lock.descriptor(), &status); }) != 0)
        return system_error(place.name, "cannot be examined");
    auto bytes = read_all(lock.descriptor(), place.name);
    if (!bytes) return bytes.error();
    const FileIdentity identity = identity_of(status, *bytes);
    std::vector<Log> logs;
    if (!is_clean(*bytes)) {
        auto found = read_logs(place);
        if (!found) return found.error();
        logs = std::move(*found);
    }
    auto hive = Hive::open(std::move(*bytes), logs);
    if (!hive) return Error{hive.error().kind, place.name + ": " + hive.error().message};
    return HiveFile{std::move(*hive), identity};
}

Result<FileIdentity> identify(const HostPlace& place) {
    const auto opened = open_regular(place, O_RDONLY);
    return opened ? identify_open(*opened, place.name) : opened.error();
}

namespace {

/// Fills the replacement with an image that then is on the disk, as it was meant.
Result<Done> fill(const Replacement& replacement, const Bytes& image, const std::string& name,
                  const OpenFile* old) {
    const int file = replacement.descriptor();
    for (size_t done = 0; done < image.size();) {
        const ssize_t put =
            attempt("write", [&] { return write(file, image.data() + done, image.size() - done); });
        if (put < 0) return system_error(name, "cannot be written");
        done += static_cast<size_t>(put);
    }
    if (old) {
        if (auto kept = replacement.take_over(old->file.number()); !kept) return kept;
    }
    if (auto flushed = replacement.flush(); !flushed) return flushed;
    const auto written = read_all(file, name);
    if (!written) return written.error();
    if (*written != image) return Error{ErrorKind::io, name + ": reads back otherwise than it was written"};
    return Done{};
}

/// The file, where one may be put in its place.
Result<OpenFile> open_to_replace(const HostPlace& place) {
    auto old = open_regular(place, O_RDONLY);
    if (!old) return old.error();
    if (old->status.st_nlink > 1)
        return Error{ErrorKind::refused,
                     place.name + ": has a second name, which would keep the old content"};
    const auto may_write = [&] {
        return faccessat(place.folder.number(), place.name.c_str(), W_OK, AT_EACCESS);
    };
    if (attempt("access", may_write) != 0) return system_error(place.name, "may not be written");
    return old;
}

}  // namespace

Result<Durability> commit(const HostPlace& place, const Hive& hive, const FileIdentity& identity,
                          FileTime now, const Announce& announce) {
    // What was written may be what stood there already: times alone are no reason to touch the file.
    if (hive.changes().empty() || hive.count_differences() == 0) return Durability::flushed;
    const auto sealed = hive.sealed_image(now);
    if (!sealed) return sealed.error();
    const auto old = open_to_replace(place);
    if (!old) return old.error();
    const auto present = identify_open(*old, place.name);
    if (!present) return present.error();
    if (*present != identity)
        return Error{ErrorKind::changed, place.name + ": was changed by another program meanwhile"};
    auto replacement = Replacement::begin(place, old->status.st_mode);
    if (!replacement) return replacement.error();
    if (auto filled = fill(*replacement, *sealed, place.name, &*old); !filled) return filled.error();
    if (announce) announce(stamp_of(sealed->size(), *sealed));
    return replacement->put_in_place(Replacement::Old::may_exist);
}

Result<Done> try_replacing(const HostPlace& place) {
    const auto old = open_to_replace(place);
    if (!old) return old.error();
    const auto replacement = Replacement::begin(place, old->status.st_mode);
    return replacement ? replacement->take_over(old->file.number()) : Result<Done>(replacement.error());
}

Result<Durability> write_new(const HostPlace& place, const Hive& hive, FileTime now) {
    const auto sealed = hive.sealed_image(now);
    if (!sealed) return sealed.error();
    auto replacement = Replacement::begin(place, 0600);
    if (!replacement) return replacement.error();
    if (auto filled = fill(*replacement, *sealed, place.name, nullptr); !filled) return filled.error();
    return replacement->put_in_place(Replacement::Old::must_be_new);
}

}  // namespace regf
