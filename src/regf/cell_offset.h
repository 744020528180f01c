#pragma once

#include <cstdint>

namespace regf {

/// Where a cell begins, counted from the first bin; no position in the file, which is 4096 bytes further on.
enum class CellOffset : uint32_t {};

constexpr CellOffset nil{0xFFFFFFFF};  ///< points nowhere

constexpr uint32_t number_of(CellOffset cell) { return static_cast<uint32_t>(cell); }

}  // namespace regf
