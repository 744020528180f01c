#pragma once

#include <map>

#include "machine/internet.h"

namespace machine {

/// The internet as Windows sees it, its proxies included. Where Windows has no part for it, nobody ever
/// answers.
class WindowsInternet : public Internet {
  public:
    WindowsInternet() = default;
    WindowsInternet(const WindowsInternet&) = delete;
    WindowsInternet& operator=(const WindowsInternet&) = delete;
    ~WindowsInternet() override;

    BasicResult<std::string, WinCode> fetch(std::string_view url) override;
    uint32_t open(std::string_view url, std::string_view agent) override;
    Chunk read(uint32_t handle, size_t most) override;
    void close(uint32_t handle) override;

  private:
    struct Answer {
        void* session = nullptr;
        void* body = nullptr;
    };
    std::map<uint32_t, Answer> answers_;
    uint32_t last_handle_ = 0;
};

}  // namespace machine
