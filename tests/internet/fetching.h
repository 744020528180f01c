#pragma once

#include <gtest/gtest.h>

#include "machine/internet.h"

/// The page at an address, or "error 12029".
inline std::string fetched(machine::Internet& internet, const std::string& address) {
    const auto page = internet.fetch(address);
    return page ? *page : "error " + std::to_string(page.error());
}

/// The body as its reader gets it, the last code after it.
inline std::string body(machine::Internet& internet, const std::string& address) {
    const uint32_t handle = internet.open(address, "BL OpenUrl");
    std::string all;
    machine::Internet::Chunk chunk;
    do {
        chunk = internet.read(handle, 200);
        EXPECT_LE(chunk.bytes.size(), 200u);
        all += chunk.bytes;
    } while (!chunk.bytes.empty());
    internet.close(handle);
    EXPECT_EQ(internet.read(handle, 200).error, machine::invalid_handle);
    return all + " " + std::to_string(chunk.error);
}
