// The internet of the running Windows, against a web host on this machine whose address stands in
// $BRITLOCK_WEB.

#include <gtest/gtest.h>

#include <cstdlib>

#include "machine/windows/windows_internet.h"

namespace machine {
namespace {

struct InternetOfWindows : testing::Test {
    InternetOfWindows() : host(std::getenv("BRITLOCK_WEB")) {}
    WinCode error_of(const std::string& url) {
        const auto page = internet.fetch(url);
        return page ? success : page.error();
    }
    std::string host;
    WindowsInternet internet;
};

TEST_F(InternetOfWindows, FetchesPagesAndSaysWhatWentWrong) {
    const auto page = internet.fetch(host + "/version.txt");
    ASSERT_TRUE(page) << page.error();
    EXPECT_EQ(*page, "1.0 \r\n");
    EXPECT_EQ(error_of(host + "/none.txt"), internet_no_such_page);
    EXPECT_EQ(error_of(host + "/large.bin"), internet_failed) << "no page is that long";
    EXPECT_EQ(error_of("http://127.0.0.1:1/"), internet_cannot_connect);
    EXPECT_FALSE(internet.fetch("no address"));
}

TEST_F(InternetOfWindows, GivesAFileInBites) {
    const uint32_t handle = internet.open(host + "/large.bin", "BL OpenUrl");
    ASSERT_NE(handle, 0u);
    std::string bytes;
    Internet::Chunk chunk;
    do {
        chunk = internet.read(handle, 200);
        EXPECT_EQ(chunk.error, success);
        EXPECT_LE(chunk.bytes.size(), 200u);
        bytes += chunk.bytes;
    } while (!chunk.bytes.empty());
    EXPECT_EQ(bytes, std::string(100000, 'x'));
    internet.close(handle);
    EXPECT_EQ(internet.read(handle, 200).error, invalid_handle);
    EXPECT_EQ(internet.open("http://127.0.0.1:1/", "BL OpenUrl"), 0u);
    internet.close(0);

    const uint32_t missing = internet.open(host + "/none.txt", "BL OpenUrl");
    ASSERT_NE(missing, 0u) << "an answer all the same";
    EXPECT_NE(internet.read(missing, 200).bytes, "");
}

}  // namespace
}  // namespace machine
