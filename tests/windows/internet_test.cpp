// The internet of the running Windows, against a web host on this machine whose address stands in
// $BRITLOCK_WEB.

#include <cstdlib>

#include "internet/fetching.h"
#include "machine/windows/windows_internet.h"

TEST(InternetOfWindows, FetchesPagesInOneOrInBitesAndSaysWhatWentWrong) {
    const std::string host = std::getenv("BRITLOCK_WEB");
    machine::WindowsInternet internet;
    EXPECT_EQ(fetched(internet, host + "/version.txt"), "1.0 \r\n");
    EXPECT_EQ(fetched(internet, host + "/none.txt"), "error 12150");
    EXPECT_EQ(fetched(internet, host + "/large.bin"), "error 12004") << "no page is that long";
    EXPECT_EQ(fetched(internet, "http://127.0.0.1:1/"), "error 12029");
    EXPECT_FALSE(internet.fetch("no address"));
    EXPECT_EQ(body(internet, host + "/large.bin"), std::string(100000, 'x') + " 0");
    EXPECT_NE(body(internet, host + "/none.txt"), " 0") << "the body of any answer can be read";
    EXPECT_EQ(internet.open("http://127.0.0.1:1/", "BL OpenUrl"), 0u);
    internet.close(0);
}
