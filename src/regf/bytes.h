#pragma once

#include <cstdint>
#include <cstring>
#include <span>

#include "regf/cell_offset.h"

namespace regf {

/// Little-endian numbers composed from single bytes: alignment and byte order of the host are no questions.
/// The caller has made sure that the bytes are there.
inline uint16_t get16(std::span<const uint8_t> bytes, size_t at) {
    return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

inline uint32_t get32(std::span<const uint8_t> bytes, size_t at) {
    return get16(bytes, at) | static_cast<uint32_t>(get16(bytes, at + 2)) << 16;
}

inline uint64_t get64(std::span<const uint8_t> bytes, size_t at) {
    return get32(bytes, at) | static_cast<uint64_t>(get32(bytes, at + 4)) << 32;
}

inline void put16(std::span<uint8_t> bytes, size_t at, uint16_t value) {
    bytes[at] = static_cast<uint8_t>(value);
    bytes[at + 1] = static_cast<uint8_t>(value >> 8);
}

inline void put32(std::span<uint8_t> bytes, size_t at, uint32_t value) {
    put16(bytes, at, static_cast<uint16_t>(value));
    put16(bytes, at + 2, static_cast<uint16_t>(value >> 16));
}

inline void put64(std::span<uint8_t> bytes, size_t at, uint64_t value) {
    put32(bytes, at, static_cast<uint32_t>(value));
    put32(bytes, at + 4, static_cast<uint32_t>(value >> 32));
}

inline CellOffset get_cell(std::span<const uint8_t> bytes, size_t at) { return CellOffset{get32(bytes, at)}; }

inline void put_cell(std::span<uint8_t> bytes, size_t at, CellOffset cell) {
    put32(bytes, at, number_of(cell));
}

inline bool has_signature(std::span<const uint8_t> bytes, const char* letters) {
    const size_t length = std::strlen(letters);
    return bytes.size() >= length && std::memcmp(bytes.data(), letters, length) == 0;
}

}  // namespace regf
