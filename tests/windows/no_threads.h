#pragma once

/// GoogleTest's way to hold back a thread until it may start, for a standard library without mutexes. No test
/// here starts one.
namespace testing::internal {
class Notification {
  public:
    void Notify() {}
    void WaitForNotification() {}
};
}  // namespace testing::internal
