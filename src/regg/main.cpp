#include <sched.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "machine/offline/tool_request.h"
#include "regg/hive_tool.h"

namespace {

/// Whom the report goes to, and what is to be done.
struct Order {
    bool of_program;  ///< else of a person
    machine::ToolRequest request;
    std::optional<machine::HandedHive> handed;
};

/// Waits for it, where a program has started this one: it does so before there is anything to do. None where
/// it has ended without a word.
std::optional<Order> next_order(std::vector<std::string> words) {
    Order order{std::getenv(machine::channel_variable) != nullptr, {}, {}};
    if (order.of_program) {
        auto request = machine::decode_request(machine::receive(machine::channel_of_tool, order.handed));
        if (!request) return std::nullopt;
        order.request = std::move(*request);
    } else {
        const char* const drives = std::getenv("BRIGHTLOCK_DRIVES");
        const char* const mounts = std::getenv("BRIGHTLOCK_MOUNTS");
        order.request = {drives ? drives : "",
                         mounts ? mounts : machine::default_state_folder() + "/mounts/host",
                         std::move(words)};
    }
    return order;
}

regg::Run failed(base::ErrorKind why, const std::string& detail) {
    regg::Run run;
    run.report.why = why;
    run.report.detail = detail;
    return run;
}

regg::Run work(Order& order) try {
    auto drives = machine::DriveMap::parse(order.request.drives);
    if (!drives) return failed(drives.error().kind, drives.error().message);
    return regg::run({std::move(*drives), machine::MountTable(order.request.mounts), std::move(order.handed)},
                     order.request.words);
} catch (const std::exception&) {
    return failed(base::ErrorKind::no_space, "there is not enough memory for this hive");
}

void tell(bool program, const regg::Run& run) {
    if (program) {
        (void)machine::send(machine::channel_of_tool, machine::encode(run.report),
                            run.hive);  // or nobody is there
    } else if (!run.report.detail.empty()) {
        (void)std::fprintf(stderr, "regg: %s\n", run.report.detail.c_str());
    }
}

}  // namespace

int main(int count, char** words) {
    (void)std::signal(SIGXFSZ, SIG_IGN);  // a limit on file sizes is an error to report like a full disk
    (void)std::signal(SIGPIPE, SIG_IGN);  // who asked may be gone; what is begun is ended all the same
    auto order = next_order({words + 1, words + count});
    if (!order) return EXIT_FAILURE;
    const regg::Run run = work(*order);
    tell(order->of_program, run);
    (void)sched_yield();  // who waits for the report goes first: clearing away may take as long as the work
    return run.report.succeeded ? EXIT_SUCCESS : EXIT_FAILURE;
}
