#pragma once

#include <chrono>
#include <memory>

#include "machine/internet.h"

namespace machine {

/// The internet by Qt, with the proxy of the person's system. While a call waits, windows are drawn and
/// timers run; what a person does is kept for afterwards.
class QtInternet : public Internet {
  public:
    /// `patience`: how long the other side may be silent. A QCoreApplication is needed from the first call
    /// on.
    explicit QtInternet(std::chrono::milliseconds patience = std::chrono::seconds(30));
    ~QtInternet() override;

    BasicResult<std::string, WinCode> fetch(std::string_view url) override;
    uint32_t open(std::string_view url, std::string_view agent) override;
    Chunk read(uint32_t handle, size_t most) override;
    void close(uint32_t handle) override;

  private:
    struct Private;
    std::unique_ptr<Private> d_;
};

}  // namespace machine
