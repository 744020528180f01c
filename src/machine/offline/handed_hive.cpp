#include "machine/offline/handed_hive.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace machine {

namespace {

constexpr size_t most_descriptors = 2;
using Control = std::array<char, CMSG_SPACE(most_descriptors * sizeof(int))>;

/// A message of bytes, with room for descriptors beside them.
struct Message {
    Message(char* bytes, size_t size) : piece{bytes, size} {
        header.msg_iov = &piece;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
    iovec piece;
    alignas(cmsghdr) Control control{};
    msghdr header{};
};

std::optional<HandedHive> hive_in(msghdr& header) {
    const cmsghdr* const rights = CMSG_FIRSTHDR(&header);
    if (!rights || rights->cmsg_type != SCM_RIGHTS) return std::nullopt;
    std::array<int, most_descriptors> numbers{-1, -1};
    std::memcpy(numbers.data(), CMSG_DATA(rights), rights->cmsg_len - CMSG_LEN(0));
    HandedHive hive{Descriptor(numbers[0]), Descriptor(numbers[1])};
    return hive;
}

}  // namespace

Channel Channel::open() {
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return {};
    Channel channel{Descriptor(ends[0]), Descriptor(ends[1])};
    if (fcntl(channel.ours.number(), F_SETFL, O_NONBLOCK) != 0) return {};
    return channel;
}

bool send(int channel, std::string_view bytes, const std::optional<HandedHive>& hive) {
    std::string copy(bytes);
    Message message(copy.data(), copy.size());
    if (hive) {
        const std::array<int, most_descriptors> numbers{hive->lock.number(), hive->memory.number()};
        cmsghdr* const rights = CMSG_FIRSTHDR(&message.header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        const size_t size = (hive->memory.is_open() ? 2 : 1) * sizeof(int);
        rights->cmsg_len = CMSG_LEN(size);
        message.header.msg_controllen = CMSG_SPACE(size);
        std::memcpy(CMSG_DATA(rights), numbers.data(), size);
    } else {
        message.header.msg_control = nullptr;
        message.header.msg_controllen = 0;
    }
    return sendmsg(channel, &message.header, MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string receive(int channel, std::optional<HandedHive>& hive) {
    const ssize_t size = recv(channel, nullptr, 0, MSG_PEEK | MSG_TRUNC);
    std::string bytes(static_cast<size_t>(std::max<ssize_t>(size, 0)), '\0');
    Message message(bytes.data(), bytes.size());
    if (bytes.empty() || recvmsg(channel, &message.header, MSG_CMSG_CLOEXEC) != size) return {};
    if (auto handed = hive_in(message.header)) hive = std::move(handed);
    return bytes;
}

}  // namespace machine
