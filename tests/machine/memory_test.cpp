// Failures that the machine in memory plays on demand, as Windows shows them.

#include <gtest/gtest.h>

#include "machine/memory/memory_machine.h"
#include "machine/offline_fixture.h"

using namespace machine;

namespace {

constexpr auto tool = "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" ";
constexpr auto hive = "C:\\Documents and Settings\\Anna\\NTUSER.DAT";

}  // namespace

TEST(MemoryMachine, RefusesKeysAsTheirAccessSays) {
    MemoryMachine machine;
    MemoryKey& key = machine.registry.at(Root::current_user, "Lock").set("a", 1);
    MemoryRegistry& registry = machine.registry;
    RawValue value;

    key.access = Access::read_only;
    EXPECT_EQ(registry.query(Root::current_user, "Lock", "a", value).open, success);
    EXPECT_EQ(registry.set(Root::current_user, "Lock", "a", dword_value(2)).open, access_denied);
    EXPECT_EQ(registry.create_key(Root::current_user, "Lock\\Below"), Registry::Disposition::failed);
    EXPECT_EQ(registry.delete_key(Root::current_user, "Lock"), access_denied);
    key.access = Access::none;
    EXPECT_EQ(registry.query(Root::current_user, "Lock", "a", value).open, access_denied);

    key.access = Access::full;
    registry.failing_set = disk_full;
    EXPECT_EQ(registry.set(Root::current_user, "Lock", "a", dword_value(2)).action, disk_full);
    EXPECT_EQ(registry.dump(Root::current_user, "Lock"), " : a = dword 1\n");
}

TEST(MemoryMachine, OnlyWindows9XLetsAKeyBeMadeBelowUsers) {
    EXPECT_EQ(MemoryMachine(versions::win98).registry.create_key(Root::users, "bob\\Software"),
              Registry::Disposition::created);
    EXPECT_EQ(MemoryMachine(versions::winnt).registry.create_key(Root::users, "bob\\Software"),
              Registry::Disposition::failed);
}

TEST(MemoryMachine, AKeyLeftOpenByAFailedFlushKeepsItsHiveMounted) {
    MemoryMachine machine;
    machine.add_profile("Anna");
    ASSERT_EQ(run_command(machine.processes, std::string(tool) + "load \"" + hive + "\" HKU\\Anna"), 0u);
    machine.registry.failing_flush = true;
    EXPECT_EQ(machine.registry.create_key(Root::users, "Anna\\Software"), Registry::Disposition::opened);
    EXPECT_EQ(run_command(machine.processes, std::string(tool) + "unload HKU\\Anna"), 1u);
}

TEST(MemoryMachine, AToolThatTakesItsTimeWorksAtItsEnd) {
    MemoryMachine machine;
    machine.add_profile("Anna");
    machine.processes.polls_until_done = 3;
    int waited = 0;
    machine.processes.while_waiting = [&] {
        ++waited;
        EXPECT_EQ(machine.registry.dump(Root::users, "Anna"), "(missing)");
    };
    EXPECT_EQ(run_command(machine.processes, std::string(tool) + "load \"" + hive + "\" HKU\\Anna"), 0u);
    EXPECT_EQ(waited, 3);
    EXPECT_EQ(machine.registry.dump(Root::users, "Anna"), "Software\n");
}

TEST(MemoryMachine, FaultsOfFilesStayUntilTheyAreTakenBack) {
    MemoryMachine machine;
    machine.add_profile("Anna");
    machine.files.fail(hive, permission_denied);
    EXPECT_EQ(machine.files.open_binary(hive).error, permission_denied);
    EXPECT_EQ(run_command(machine.processes, std::string(tool) + "load \"" + hive + "\" HKU\\Anna"), 1u);
    machine.files.fail(hive, no_error);
    EXPECT_EQ(machine.files.open_binary(hive).error, no_error);
}
