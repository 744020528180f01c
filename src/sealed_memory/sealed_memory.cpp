#include "sealed_memory/sealed_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace sealed_memory {

namespace {

constexpr uint64_t page = 4096;
constexpr int all_seals = F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL;

uint64_t in_pages(uint64_t size) { return (size + page - 1) / page * page; }

void must(bool done) {
    if (!done) throw std::bad_alloc();
}

}  // namespace

Memory::Memory() : descriptor_(memfd_create("hive", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    must(descriptor_ >= 0);
}

Memory Memory::holding(std::span<const uint8_t> bytes) {
    Memory memory;
    memory.append(bytes);
    return memory;
}

std::optional<Memory> Memory::sealed_by_another(int descriptor) {
    Memory memory(descriptor);
    struct stat status {};
    const bool sealed = fcntl(descriptor, F_GET_SEALS) == all_seals;
    if (!sealed || fstat(descriptor, &status) != 0 || status.st_uid != geteuid()) return std::nullopt;
    return memory;
}

Memory::~Memory() {
    if (descriptor_ >= 0) (void)close(descriptor_);
}

uint64_t Memory::size() const {
    struct stat status {};
    must(fstat(descriptor_, &status) == 0);
    return static_cast<uint64_t>(status.st_size);
}

void Memory::append(std::span<const uint8_t> bytes) const {
    must(lseek(descriptor_, 0, SEEK_END) >= 0);
    while (!bytes.empty()) {
        const ssize_t put = write(descriptor_, bytes.data(), bytes.size());
        must(put > 0 || (put < 0 && errno == EINTR));
        if (put > 0) bytes = bytes.subspan(static_cast<size_t>(put));
    }
}

bool Memory::read(uint64_t at, std::span<uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t got = pread(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (got <= 0) return false;
        at += static_cast<uint64_t>(got);
        bytes = bytes.subspan(static_cast<size_t>(got));
    }
    return true;
}

void Memory::seal() const { must(fcntl(descriptor_, F_ADD_SEALS, all_seals) == 0); }

Mapping::Mapping(const Memory& memory, uint64_t size, uint64_t most)
    : size_(size), most_(in_pages(std::max(most, std::max(size, page)))) {
    void* const room = mmap(nullptr, most_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    must(room != MAP_FAILED);
    start_ = static_cast<uint8_t*>(room);
    if (size == 0) return;
    if (mmap(room, in_pages(size), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED | MAP_NORESERVE,
             memory.descriptor(), 0) != MAP_FAILED)
        return;
    (void)munmap(room, most_);
    throw std::bad_alloc();
}

Mapping::~Mapping() {
    if (start_) (void)munmap(start_, most_);
}

void Mapping::grow(uint64_t size) {
    must(size <= most_);
    const uint64_t from = in_pages(size_);
    const uint64_t to = in_pages(size);
    must(to <= from || mprotect(start_ + from, to - from, PROT_READ | PROT_WRITE) == 0);
    size_ = size;
}

}  // namespace sealed_memory
