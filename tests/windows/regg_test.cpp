// The hive tool as somebody calls it by hand.

#include <gtest/gtest.h>

#include "machine/subject.h"
#include "machine/windows/windows_machine.h"
#include "windows/scene.h"

namespace machine {
namespace {

struct HiveTool : testing::Test {
    HiveTool() { make_anna("C:\\Profiles"); }

    uint32_t call(const std::string& arguments) { return run_command(processes, "regg.exe " + arguments); }
    bool mounted() { return stored(Root::users, "Tried\\Software", "") != "no key"; }

    WindowsProcesses processes;
    const std::string load = "load \"C:\\Profiles\\Anna\\NTUSER.DAT\" ";
};

TEST_F(HiveTool, TakesItsTwoCommandsAndNothingElse) {
    for (const char* key : {"HKU\\Tried more", "Tried", "HKU\\", "HKU\\Tried\\Software", "HKLM\\Tried"}) {
        EXPECT_EQ(call(load + key), 1u) << key;
        EXPECT_FALSE(mounted()) << key;
    }
    EXPECT_EQ(call(load + "hku\\Tried"), 0u);
    EXPECT_TRUE(mounted());
    for (const char* wrong :
         {"unload HKU\\Other HKU\\Tried", "unload Tried", "unload", "load HKU\\Tried", ""}) {
        EXPECT_EQ(call(wrong), 1u) << wrong;
        EXPECT_TRUE(mounted()) << wrong;
    }
    EXPECT_EQ(call("unload \"HKU\\Tried\""), 0u);
    EXPECT_FALSE(mounted());
    EXPECT_EQ(call("unload HKU\\Tried"), 1u);
}

}  // namespace
}  // namespace machine
