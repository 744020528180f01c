#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>

namespace sealed_memory {

/// Where the bytes of one hive lie. Once sealed nobody can change them any more, not even who put them there:
/// what one process has examined, another that is handed the descriptor need not examine again.
class Memory {
  public:
    /// Empty. std::bad_alloc here and below: the system has no more.
    Memory();
    static Memory holding(std::span<const uint8_t> bytes);
    /// Takes a descriptor over. None where it is no sealed memory, or another user's.
    static std::optional<Memory> sealed_by_another(int descriptor);
    Memory(Memory&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Memory& operator=(Memory&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Memory();

    /// To be filled from a file as well.
    int descriptor() const { return descriptor_; }
    uint64_t size() const;
    void append(std::span<const uint8_t> bytes) const;
    /// False where there is not so much.
    bool read(uint64_t at, std::span<uint8_t> bytes) const;
    void seal() const;

  private:
    explicit Memory(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

/// A view of the front of a memory. A page that is written to becomes this view's own; the memory stays.
class Mapping {
  public:
    /// It can grow up to `most` bytes, and stays where it is.
    Mapping(const Memory& memory, uint64_t size, uint64_t most);
    Mapping(Mapping&& other) noexcept
        : start_(std::exchange(other.start_, nullptr)), size_(other.size_), most_(other.most_) {}
    Mapping& operator=(Mapping&& other) noexcept {
        std::swap(start_, other.start_);
        std::swap(size_, other.size_);
        std::swap(most_, other.most_);
        return *this;
    }
    ~Mapping();

    std::span<uint8_t> bytes() { return {start_, size_}; }
    std::span<const uint8_t> bytes() const { return {start_, size_}; }
    /// What comes is zero.
    void grow(uint64_t size);

  private:
    uint8_t* start_ = nullptr;
    uint64_t size_ = 0;
    uint64_t most_ = 0;
};

}  // namespace sealed_memory
