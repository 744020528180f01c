#include "machine/memory/memory_internet.h"

namespace machine {

BasicResult<std::string, WinCode> MemoryInternet::fetch(std::string_view url) {
    requests.emplace_back(url);
    const auto page = pages.find(requests.back());
    if (page == pages.end()) return internet_cannot_connect;
    return page->second;
}

uint32_t MemoryInternet::open(std::string_view url, std::string_view) {
    auto page = fetch(url);
    if (!page) return 0;
    bodies_[++last_handle_] = {std::move(*page)};
    return last_handle_;
}

Internet::Chunk MemoryInternet::read(uint32_t handle, size_t most) {
    const auto body = bodies_.find(handle);
    if (body == bodies_.end()) return {invalid_handle, ""};
    auto& [bytes, at] = body->second;
    if (lost_after && at >= *lost_after) return {internet_connection_lost, ""};
    std::string chunk = bytes.substr(at, most);
    at += chunk.size();
    return {success, std::move(chunk)};
}

void MemoryInternet::close(uint32_t handle) { bodies_.erase(handle); }

}  // namespace machine
