#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "machine/internet.h"

namespace machine {

/// Pages that live in memory; an address without one answers to nobody.
struct MemoryInternet : Internet {
    std::map<std::string, std::string> pages;
    /// The connection is lost once this many bytes of a body have been read.
    std::optional<size_t> lost_after;
    std::vector<std::string> requests;  ///< addresses, as they were asked for
    size_t open_bodies() const { return bodies_.size(); }

    BasicResult<std::string, WinCode> fetch(std::string_view url) override;
    uint32_t open(std::string_view url, std::string_view agent) override;
    Chunk read(uint32_t handle, size_t most) override;
    void close(uint32_t handle) override;

  private:
    struct Body {
        std::string bytes;
        size_t at = 0;
    };
    std::map<uint32_t, Body> bodies_;
    uint32_t last_handle_ = 0;
};

}  // namespace machine
