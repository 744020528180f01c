#include "machine/qt_internet/qt_internet.h"

#include <QCoreApplication>

#include "internet/fetching.h"
#include "internet/web_host.h"
#include "program/world.h"
#include "ui/update_form.h"

namespace {

struct Web : Test {
    int count = 0;
    QCoreApplication application{count, nullptr};  // its loop is that of the web host too
    WebHost host;
    QtInternet internet{std::chrono::milliseconds(300)};
};

TEST_F(Web, PagesComeAsTheyAre) {
    std::string all_bytes;
    for (int i = 0; i < 20000; ++i)
        all_bytes += static_cast<char>(i * 7);
    host.pages = {{"/brit.txt", {"5.3.5\r\n"}}, {"/empty", {""}}, {"/file", {all_bytes}}};
    EXPECT_EQ(fetched(internet, host.address() + "/brit.txt"), "5.3.5\r\n");
    EXPECT_EQ(fetched(internet, host.address() + "/empty"), "");
    EXPECT_EQ(body(internet, host.address() + "/file"), all_bytes + " 0");
    EXPECT_THAT(host.requests.back(), AllOf(HasSubstr("User-Agent: BL OpenUrl\r\n"), HasSubstr("no-cache")));
}

TEST_F(Web, FailuresAreCodes) {
    WebHost gone;
    const std::string nobody = gone.address() + "/", here = host.address();
    gone.close();
    host.pages = {{"/cut", {std::string(500, 'x'), "200 OK", 900}},
                  {"/silent", {"", ""}},
                  {"/huge", {std::string(1 << 20, 'x')}}};
    EXPECT_EQ(fetched(internet, nobody), "error 12029");
    EXPECT_EQ(fetched(internet, "http://host.invalid/"), "error 12007");
    EXPECT_EQ(fetched(internet, here + "/silent"), "error 12002");
    EXPECT_EQ(fetched(internet, here + "/none"), "error 12150");
    EXPECT_EQ(fetched(internet, here + "/cut"), "error 12030");
    EXPECT_EQ(fetched(internet, here + "/huge"), "error 12004") << "no page of the maker";
    EXPECT_EQ(internet.open(nobody, "") + internet.open(here + "/silent", ""), 0u);
    EXPECT_EQ(internet.read(0, 200).error, invalid_handle);
    EXPECT_EQ(body(internet, here + "/cut"), std::string(500, 'x') + " 12030");
    EXPECT_EQ(body(internet, here + "/none"), "<h1>not here</h1> 0") << "the body of any answer can be read";
}

/// By the true addresses, through a proxy as the person's system may name one.
TEST_F(Web, TheUpdateWalksTheWholeRoad) {
    qputenv("http_proxy", QByteArray::fromStdString(host.address()));
    host.pages["http://update.brightlock.invalid/update/brit.txt"] = {"1.0.1"};
    host.pages["http://update-de.brightlock.invalid/update/brlckup.exe"] = {std::string(33333, 'z')};
    World w;
    w.have_password();
    const Machine its = w.windows.machine();
    w.Person::start({its.registry, its.files, its.processes, its.system, internet});
    w.give_password("secret");
    w.click(w.window().mm55);
    Update& form = w.form<Update>();
    w.click(form.cmd1);
    EXPECT_EQ(form.lbl4.text(), "1.0.0\r\n1.0.1");
    EXPECT_FALSE(w.click(form.cmd2));
    EXPECT_EQ(w.content("C:\\Program Files\\Brightlock Suite\\brlckup.exe"), std::string(33333, 'z'));
    qunsetenv("http_proxy");
}

}  // namespace
