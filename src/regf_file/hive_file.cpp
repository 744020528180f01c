#include "regf_file/hive_file.h"

#include <sys/sendfile.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "base/text.h"
#include "hostfile/replacement.h"
#include "regf/bytes.h"
#include "regf/layout.h"
#include "regf/recovery.h"
#include "sealed_memory/sealed_memory.h"

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

namespace {

/// Shorter only where the file is by now.
Result<Memory> read_into_memory(int file, uint64_t size, const std::string& name) {
    Memory memory;
    off_t done = 0;
    const auto pass_on = [&] {
        return sendfile(memory.descriptor(), file, &done, size - static_cast<uint64_t>(done));
    };
    while (static_cast<uint64_t>(done) < size) {
        const ssize_t got = attempt("read", pass_on);
        if (got < 0) return system_error(name, "cannot be read");
        if (got == 0) break;
    }
    return memory;
}

Result<HiveFile> read_unguarded(const HostPlace& place, const FileLock& lock) {
    struct stat status {};
    if (attempt("fstat", [&] { return fstat(lock.descriptor(), &status); }) != 0)
        return system_error(place.name, "cannot be examined");
    const auto size = static_cast<uint64_t>(status.st_size);
    if (size > largest_file) return Error{ErrorKind::unsupported, place.name + ": larger than any hive"};
    auto memory = read_into_memory(lock.descriptor(), size, place.name);
    if (!memory) return memory.error();
    Bytes head(std::min<uint64_t>(size, base_block_size));
    if (!memory->read(0, head))
        return Error{ErrorKind::io, place.name + ": became shorter while it was read"};
    const FileIdentity identity = identity_of(status, head);
    std::vector<Log> logs;
    if (!is_clean(head)) {
        auto found = read_logs(place);
        if (!found) return found.error();
        logs = std::move(*found);
    }
    auto hive = Hive::open(std::move(*memory), logs);
    if (!hive) return Error{hive.error().kind, place.name + ": " + hive.error().message};
    return HiveFile{std::move(*hive), identity};
}

}  // namespace

Result<HiveFile> read_hive(const HostPlace& place, const FileLock& lock) try {
    return read_unguarded(place, lock);
} catch (const std::bad_alloc&) {
    return Error{ErrorKind::no_space, place.name + ": there is not enough memory for this hive"};
}

Descriptor hand_over(Hive& hive) try {
    const int memory = hive.hand_over();
    return memory < 0 ? Descriptor() : Descriptor(fcntl(memory, F_DUPFD_CLOEXEC, 0));
} catch (const std::bad_alloc&) {
    return {};
}

std::optional<HiveFile> taken_over(const HostPlace& place, Descriptor memory) {
    const auto present = identify(place);
    auto hive = present ? Hive::taken_over(memory.release()) : std::nullopt;
    if (!hive || stamp_of(hive->bytes().size(), hive->bytes()) != present->stamp) return std::nullopt;
    return HiveFile{std::move(*hive), *present};
}

Result<FileIdentity> identify(const HostPlace& place) {
    const auto opened = open_regular(place, O_RDONLY);
    return opened ? identify_open(*opened, place.name) : opened.error();
}

namespace {

Result<Done> write_all(int file, ByteView bytes, uint64_t at, const std::string& name) {
    while (!bytes.empty()) {
        const ssize_t put = attempt(
            "write", [&] { return pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(at)); });
        if (put < 0) return system_error(name, "cannot be written");
        at += static_cast<uint64_t>(put);
        bytes = bytes.subspan(static_cast<size_t>(put));
    }
    return Done{};
}

/// By the system itself, which on some file systems need not even copy. False where it cannot.
bool copy_all(int from, int to, uint64_t size) {
    loff_t read_at = 0;
    loff_t write_at = 0;
    while (static_cast<uint64_t>(read_at) < size) {
        const auto left = size - static_cast<uint64_t>(read_at);
        if (attempt("copy", [&] { return copy_file_range(from, &read_at, to, &write_at, left, 0); }) <= 0)
            return false;
    }
    return true;
}

Result<Done> write_changed_pages(int file, const Hive::Sealed& sealed, const std::string& name) {
    for (const uint32_t page : sealed.changed_pages) {
        const size_t at = size_t{page} * bin_unit;
        const auto bytes = sealed.image.subspan(at, std::min(bin_unit, sealed.image.size() - at));
        if (auto written = write_all(file, bytes, at, name); !written) return written;
    }
    return Done{};
}

/// Empty where the file does not hold these bytes, or ends too soon.
Result<bool> holds(int file, ByteView bytes, uint64_t at, const std::string& name) {
    std::array<uint8_t, size_t{32} << 10> piece;  // NOLINT: filled before it is read
    while (!bytes.empty()) {
        const size_t size = std::min(bytes.size(), piece.size());
        const ssize_t got =
            attempt("read", [&] { return pread(file, piece.data(), size, static_cast<off_t>(at)); });
        if (got < 0) return system_error(name, "cannot be read");
        if (got == 0 || std::memcmp(piece.data(), bytes.data(), static_cast<size_t>(got)) != 0) return false;
        at += static_cast<uint64_t>(got);
        bytes = bytes.subspan(static_cast<size_t>(got));
    }
    return true;
}

/// What lay in the file where something is changed is what was opened; the rest is seen in the copy.
Result<bool> is_as_opened(int file, const Hive::Sealed& sealed, const std::string& name) {
    for (const uint32_t page : sealed.changed_pages) {
        const size_t at = size_t{page} * bin_unit;
        if (at >= sealed.opened.size()) break;
        const auto bytes = sealed.opened.subspan(at, std::min(bin_unit, sealed.opened.size() - at));
        auto same = holds(file, bytes, at, name);
        if (!same || !*same) return same;
    }
    return true;
}

Error changed_meanwhile(const std::string& name) {
    return {ErrorKind::changed, name + ": was changed by another program meanwhile"};
}

Result<Done> compare(const Replacement& replacement, const Hive::Sealed& sealed, const std::string& name,
                     const OpenFile* copied) {
    const auto same = holds(replacement.descriptor(), sealed.image, 0, name);
    if (!same) return same.error();
    if (*same) return Done{};
    const auto old_same = copied ? holds(copied->file.number(), sealed.opened, 0, name) : true;
    if (old_same && !*old_same) return changed_meanwhile(name);
    return Error{ErrorKind::io, name + ": reads back otherwise than it was written"};
}

/// Fills the replacement with the sealed image, which then is on the disk, as it was meant: compared while
/// the disk works.
Result<Done> fill(const Replacement& replacement, const Hive::Sealed& sealed, const std::string& name,
                  const OpenFile* old, bool old_is_as_opened) {
    const int file = replacement.descriptor();
    const bool copied = old && old_is_as_opened &&
                        copy_all(old->file.number(), file, static_cast<uint64_t>(old->status.st_size));
    const Result<Done> written =
        copied ? write_changed_pages(file, sealed, name) : write_all(file, sealed.image, 0, name);
    if (!written) return written.error();
    if (old) {
        if (auto kept = replacement.take_over(old->file.number()); !kept) return kept;
    }
    replacement.begin_to_flush();
    const auto compared = compare(replacement, sealed, name, copied ? old : nullptr);
    return compared ? replacement.flush() : compared;
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

Result<Committed> commit(const HostPlace& place, Hive& hive, const FileIdentity& identity, FileTime now) {
    if (hive.changes().empty()) return Committed{};
    const auto sealed = hive.seal(now);
    if (!sealed) return sealed.error();
    // What was written may be what stood there already: times alone are no reason to touch the file.
    if (sealed->differences == 0) return Committed{};
    const auto old = open_to_replace(place);
    if (!old) return old.error();
    const auto present = identify_open(*old, place.name);
    if (!present) return present.error();
    if (*present != identity) return changed_meanwhile(place.name);
    // A recovered hive is not what lies in the file, which has no part in the new one.
    const auto same =
        hive.recovered() ? Result<bool>(true) : is_as_opened(old->file.number(), *sealed, place.name);
    if (!same) return same.error();
    if (!*same) return changed_meanwhile(place.name);
    auto replacement = Replacement::begin(place, old->status.st_mode);
    if (!replacement) return replacement.error();
    if (auto filled = fill(*replacement, *sealed, place.name, &*old, !hive.recovered()); !filled)
        return filled.error();
    const auto placed = replacement->put_in_place(Replacement::Old::may_exist);
    if (!placed) return placed.error();
    return Committed{*placed, sealed->differences};
}

Result<Done> try_replacing(const HostPlace& place) {
    const auto old = open_to_replace(place);
    if (!old) return old.error();
    const auto replacement = Replacement::begin(place, old->status.st_mode);
    return replacement ? replacement->take_over(old->file.number()) : Result<Done>(replacement.error());
}

Result<Durability> write_new(const HostPlace& place, Hive& hive, FileTime now) {
    const auto sealed = hive.seal(now);
    if (!sealed) return sealed.error();
    auto replacement = Replacement::begin(place, 0600);
    if (!replacement) return replacement.error();
    if (auto filled = fill(*replacement, *sealed, place.name, nullptr, false); !filled) return filled.error();
    return replacement->put_in_place(Replacement::Old::must_be_new);
}

}  // namespace regf
