#include "machine/qt_internet/qt_internet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

#include "internet/web_host.h"
#include "program/world.h"
#include "ui/update_form.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;

/// Qt wants one, and its loop is that of the web host too.
QCoreApplication& application() {
    static int count = 0;
    static QCoreApplication the_one(count, nullptr);
    return the_one;
}

struct Web : testing::Test {
    QCoreApplication& app = application();
    WebHost host;
    QtInternet internet{std::chrono::milliseconds(300)};

    std::string url(const std::string& page, const std::string& at = "") {
        return "http://" + (at.empty() ? host.name() : at) + page;
    }
    std::string fetched(const std::string& address) {
        const auto page = internet.fetch(address);
        return page ? *page : "error " + std::to_string(page.error());
    }
    /// The body as its reader gets it, the last code behind it.
    std::string body(const std::string& address) {
        const uint32_t handle = internet.open(address, "BL OpenUrl");
        std::string all;
        Internet::Chunk chunk;
        do {
            chunk = internet.read(handle, 200);
            EXPECT_LE(chunk.bytes.size(), 200u);
            all += chunk.bytes;
        } while (!chunk.bytes.empty());
        internet.close(handle);
        EXPECT_EQ(internet.read(handle, 200).error, invalid_handle);
        return all + " " + std::to_string(chunk.error);
    }
};

TEST_F(Web, PagesComeAsTheyAre) {
    host.pages["/update/brit.txt"] = {"5.3.5\r\n"};
    EXPECT_EQ(fetched(url("/update/brit.txt")), "5.3.5\r\n");
    host.pages["/empty"] = {""};
    EXPECT_EQ(fetched(url("/empty")), "");
    std::string all_bytes;
    for (int i = 0; i < 20000; ++i)
        all_bytes += static_cast<char>(i * 7);
    host.pages["/file"] = {all_bytes};
    EXPECT_EQ(body(url("/file")), all_bytes + " 0");
    EXPECT_THAT(host.requests.back(), HasSubstr("User-Agent: BL OpenUrl\r\n"));
    EXPECT_THAT(host.requests.back(), HasSubstr("no-cache"));
}

TEST_F(Web, FailuresAreCodes) {
    WebHost gone;
    const std::string nobody = gone.name();
    gone.close();
    host.pages["/cut"] = {std::string(500, 'x'), "200 OK", 900};
    host.pages["/silent"] = {.silent = true};
    host.pages["/stalls"] = {std::string(40, 'x'), "200 OK", 900, 40};
    host.pages["/huge"] = {std::string(1 << 20, 'x')};
    EXPECT_EQ(fetched(url("/", nobody)), "error 12029");
    EXPECT_EQ(fetched(url("/", "host.invalid")), "error 12007");
    EXPECT_EQ(fetched(url("/silent")), "error 12002");
    EXPECT_EQ(fetched(url("/none")), "error 12150");
    EXPECT_EQ(fetched(url("/cut")), "error 12030");
    EXPECT_EQ(fetched(url("/huge")), "error 12004") << "no page of the maker";
    EXPECT_EQ(internet.open(url("/", nobody), ""), 0u);
    EXPECT_EQ(internet.open(url("/silent"), ""), 0u);
    EXPECT_EQ(internet.read(0, 200).error, invalid_handle);
    EXPECT_EQ(body(url("/cut")), std::string(500, 'x') + " 12030");
    EXPECT_EQ(body(url("/none")), "<h1>not here</h1> 0") << "the body of any answer can be read";
}

/// The true hosts are nowhere: their names stand for the one on this machine.
struct Redirected : Internet {
    Redirected(Internet& its_target, std::string its_host) : target(its_target), host(std::move(its_host)) {}
    std::string there(std::string_view url) const {
        const size_t path = url.find('/', 7);
        return "http://" + host + std::string(url.substr(path));
    }
    BasicResult<std::string, WinCode> fetch(std::string_view url) override {
        return target.fetch(there(url));
    }
    uint32_t open(std::string_view url, std::string_view agent) override {
        return target.open(there(url), agent);
    }
    Chunk read(uint32_t handle, size_t most) override { return target.read(handle, most); }
    void close(uint32_t handle) override { target.close(handle); }
    Internet& target;
    std::string host;
};

TEST_F(Web, TheUpdateWalksTheWholeRoad) {
    World w;
    Redirected road(internet, host.name());
    host.pages["/update/brit.txt"] = {"1.0.1"};
    w.have_password();
    const Machine its = w.windows.machine();
    Update* form = nullptr;
    const auto ask_for_the_version = [&] {
        w.Person::start({its.registry, its.files, its.processes, its.system, road});
        w.give_password("secret");
        w.click(w.window().mm55);
        form = w.program->loaded<Update>();
        w.screen.act([&] { form->cmd1.click(); });
    };
    ask_for_the_version();
    EXPECT_EQ(form->lbl4.text(), "1.0.0\r\n1.0.1");

    host.pages["/update/brlckup.exe"] = {std::string(3333, 'z'), "200 OK", 0, 150};
    EXPECT_FALSE(w.screen.act([&] { form->cmd2.click(); }));
    EXPECT_EQ(w.content("C:\\Program Files\\Brightlock Suite\\brlckup.exe"), std::string(3333, 'z'));

    ask_for_the_version();
    host.close();
    w.screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(w.screen.act([&] { form->cmd2.click(); }));
    EXPECT_EQ(w.told(), "Error 6");
    EXPECT_EQ(form->lbl7.text(), "0 Byts wurden Downgeloadet     -  Fertig!");
}

}  // namespace
}  // namespace britlock
