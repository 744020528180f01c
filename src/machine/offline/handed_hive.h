#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hostfile/place.h"

namespace machine {

using hostfile::Descriptor;

/// A hive on its way from one process of ours to the next: the file, locked all the time, and what was
/// examined of it, in memory that nobody can change any more. The next one need not read it again.
struct HandedHive {
    Descriptor lock;
    Descriptor memory;  ///< not open: there is only the lock
};

/// Two ends of a channel for messages between the program and the hive tool. The program never waits at its
/// end. Not open where there is none.
struct Channel {
    static Channel open();
    Descriptor ours;
    Descriptor of_tool;
};

/// A message, and a hive with it. False where nobody is there to read it.
bool send(int channel, std::string_view bytes, const std::optional<HandedHive>& hive);
/// The next message; empty where there is none, or nobody left who could send one.
std::string receive(int channel, std::optional<HandedHive>& hive);

}  // namespace machine
