// Pure functions over texts: .ini files, paths, search patterns, command lines.

#include <gtest/gtest.h>

#include "machine/command_line.h"
#include "machine/profile_text.h"
#include "machine/windows_path.h"

using namespace machine;

namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    for (const std::string& text : texts)
        out += "<" + text + ">";
    return out;
}

}  // namespace

TEST(ProfileText, FindsAValueAsWindowsDoes) {
    const std::string long_value(300, 'x'), options = "[options]\r\n";
    // clang-format off
    const std::pair<std::string, std::string> rows[] = {
        {"[Options]\r\nBootGUI=0\r\n", "0"}, {"  [ OPTIONS ] \r\n\tbootgui  =  1 \t\r\n", "1"}, {"[options]\rBootGUI=7\r", "7"},
        {options + "BootGUI=\" a \"", " a "}, {options + "BootGUI='b'", "b"}, {options + "BootGUI=\"b", "\"b"},  // an odd quote stays
        {"[options\r\nBootGUI=1\r\n", "1"}, {options + ";BootGUI=1\r\nBootGUI=2\r\n", "2"},
        {options + "BootGUI=1\r\nBootGUI=2\r\n", "1"}, {options + "x=1\r\n[options]\r\nBootGUI=2\r\n", ""},  // the first counts
        {"BootGUI=2\r\n" + options, ""}, {options + "BootGUI\r\n", ""}, {options + std::string("BootGUI=1\0x\r\n", 13), "1"},
        {options + "BootGUI=" + long_value + "\r\n", long_value.substr(0, 254)},  // as much as the buffer holds
        {options + ";" + std::string(1 << 20, 'x') + "\r\nBootGUI=1", "1"}};
    // clang-format on
    for (const auto& [text, value] : rows)
        EXPECT_EQ(profile_value(text, "Options", "BootGUI"), value) << text.substr(0, 100);
}

TEST(ProfileText, ChangesOneEntryAndNothingElse) {
    constexpr auto none = std::nullopt;
    // clang-format off
    const std::tuple<const char*, std::optional<std::string_view>, const char*> rows[] = {
        {"[OPTIONS]\n bootgui =1\nx=2\n", "0", "[OPTIONS]\n bootgui =0\nx=2\n"}, {"[Options]\r\nBootGUI=1", "0", "[Options]\r\nBootGUI=0"},
        {"[Options]\r\nx=2\r\n\r\n\r\n[Paths]\r\n", "0", "[Options]\r\nx=2\r\nBootGUI=0\r\n\r\n\r\n[Paths]\r\n"},
        {"[Options]\r\n[Paths]\r\n", "0", "[Options]\r\nBootGUI=0\r\n[Paths]\r\n"},
        {"[Options]\r\nx=2", "0", "[Options]\r\nx=2\r\nBootGUI=0\r\n"},
        {"[Paths]\r\nx=1", "0", "[Paths]\r\nx=1\r\n[Options]\r\nBootGUI=0\r\n"},
        {"[Options]\r\n;c\r\nBootGUI=1\r\nodd line\r\n", none, "[Options]\r\n;c\r\nodd line\r\n"},
        {"[Options]\nBootGUI=1", none, "[Options]\n"}, {"[Options]\r\nx=1", none, "[Options]\r\nx=1"}};
    // clang-format on
    for (const auto& [before, value, after] : rows)
        EXPECT_EQ(with_profile_value(before, "Options", "BootGUI", value), after) << before;
}

TEST(WindowsPath, IsTakenApartAsWindowsDoesIt) {
    // clang-format off
    const std::tuple<std::string_view, std::string_view, FileError> rows[] = {
        {"c:\\", "C:\\", no_error}, {"C:/Documents and Settings//Anna/.\\x", "C:\\Documents and Settings\\Anna\\x", no_error},
        {"C:\\a\\..\\..\\..\\b", "C:\\b", no_error}, {"C:\\name. . \\file.", "C:\\name\\file", no_error},
        {std::string_view("C:\\a\0\\b", 7), "C:\\a", no_error}, {"", "", path_access}, {"NTUSER.DAT", "", no_such_path},
        {"\\\\server\\share\\x", "", no_such_path}, {"C:file", "", no_such_path}, {"C:\\...\\x", "", bad_file_name},
        {"C:\\file.txt:stream", "", bad_file_name}, {"C:\\a*b", "", bad_file_name}, {"C:\\nul", "", path_access},
        {"C:\\x\\Com1.txt", "", path_access}};
    // clang-format on
    for (const auto& [written, text, error] : rows) {
        const auto path = parse_path(written);
        EXPECT_EQ(path ? no_error : path.error(), error) << written;
        EXPECT_EQ(path ? path->text() : "", text);
    }
}

TEST(WindowsPath, SearchPatternsFitAsOnNT) {
    // clang-format off
    const std::tuple<const char*, const char*, const char*> rows[] = {  // a pattern, what fits, what does not
        {"*.*", "Docs", ""}, {"*", "a.b", ""}, {"Docs*.*", "docs", "Doc"}, {"*.lnk", "A.LNK", "lnk"}, {"*.lnk", "a.b.lnk", "a.lnk2"},
        {"*.", "name", "name.x"}, {"a?c", "abc", "ac"}, {"ab??", "ab", "abcde"}, {"a?.txt", "a.txt", "abc.txt"},
        {"*a*b*c*", "xxaybzc", "acb"}, {"?.?", "a.b", "aa.b"}, {"NTUSER.DAT", "ntuser.dat", "ntuser"}};
    // clang-format on
    for (const auto& [pattern, fitting, other] : rows) {
        EXPECT_TRUE(fits(fitting, pattern)) << pattern << " " << fitting;
        EXPECT_FALSE(*other && fits(other, pattern)) << pattern << " " << other;
    }
    const std::string stars = "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b";
    EXPECT_FALSE(fits(std::string(250, 'a'), stars)) << "and that without trying every way";
}

TEST(CommandLine, IsTakenApartAsWindowsDoesIt) {
    const CommandLine quoted =
        parse_command_line(" \"C:\\Program Files\\regg.exe\" load \"C:\\a b\" HKU\\c ");
    EXPECT_EQ(quoted.program, "C:\\Program Files\\regg.exe");
    EXPECT_EQ(quoted.rest, "load \"C:\\a b\" HKU\\c ");
    EXPECT_EQ(parse_command_line("explorer.exe C:\\a b").rest, "C:\\a b");

    const std::string module = "C:\\Program Files\\Lock\\britlock.exe";
    for (const std::string& line :
         {"\"" + module + "\" /icon", module + "  /icon",
          std::string("c:\\PROGRAM files\\Lock\\britlock.exe /icon"), std::string("britlock /icon")})
        EXPECT_EQ(rest_of_command_line(line, module), "/icon") << line;
    EXPECT_EQ(rest_of_command_line(module, module), "");
    EXPECT_EQ(rest_of_command_line(module + "x /icon", module), "Files\\Lock\\britlock.exex /icon")
        << "another program";
    const std::pair<const char*, const char*> rows[] = {
        {"load \"C:\\a b\\N.DAT\" HKU\\Anna", "<load><C:\\a b\\N.DAT><HKU\\Anna>"},
        {"unload HKU\\two words", "<unload><HKU\\two><words>"},
        {"a\"b c\"d  \"\"\t e", "<ab cd><><e>"},
        {R"(a\\\"b "c\\" \\d)", R"(<a\"b><c\><\\d>)"},
        {"\"open to the end", "<open to the end>"},
        {"", ""},
    };
    for (const auto& [rest, arguments] : rows)
        EXPECT_EQ(joined(split_arguments(rest)), arguments) << rest;
}
