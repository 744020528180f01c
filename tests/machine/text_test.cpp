// Pure functions over texts: .ini files, paths, search patterns, command lines.

#include <gtest/gtest.h>

#include <numeric>

#include "machine/command_line.h"
#include "machine/profile_text.h"
#include "machine/windows_path.h"

using namespace machine;

namespace {

std::string joined(const std::vector<std::string>& texts) {
    return std::accumulate(
        texts.begin(), texts.end(), std::string(),
        [](const std::string& all, const std::string& text) { return all + "<" + text + ">"; });
}

}  // namespace

TEST(ProfileText, FindsAValueAsWindowsDoes) {
    const std::string long_value(300, 'x');
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"plain", "[Options]\r\nBootGUI=0\r\n", "0"},
        {"no case, blanks around", "  [ OPTIONS ] \r\n\tbootgui  =  1 \t\r\n", "1"},
        {"double quotes", "[options]\nBootGUI=\" a \"", " a "},
        {"single quotes, last line open", "[options]\nBootGUI='b'", "b"},
        {"an odd quote stays", "[options]\nBootGUI=\"b", "\"b"},
        {"bracket missing", "[options\r\nBootGUI=1\r\n", "1"},
        {"comment", "[options]\r\n;BootGUI=1\r\nBootGUI=2\r\n", "2"},
        {"first key counts", "[options]\r\nBootGUI=1\r\nBootGUI=2\r\n", "1"},
        {"first section counts", "[options]\r\nx=1\r\n[options]\r\nBootGUI=2\r\n", ""},
        {"before any section", "BootGUI=2\r\n[options]\r\n", ""},
        {"no equals sign", "[options]\r\nBootGUI\r\n", ""},
        {"NUL ends the value", std::string("[options]\r\nBootGUI=1\0x\r\n", 24), "1"},
        {"carriage returns alone", "[options]\rBootGUI=7\r", "7"},
        {"cut to the buffer", "[options]\r\nBootGUI=" + long_value + "\r\n", long_value.substr(0, 254)},
        {"a line of a megabyte", "[options]\r\n;" + std::string(1 << 20, 'x') + "\r\nBootGUI=1", "1"},
    };
    for (const auto& [what, text, value] : rows)
        EXPECT_EQ(profile_value(text, "Options", "BootGUI"), value) << what;
}

TEST(ProfileText, ChangesOneEntryAndNothingElse) {
    const std::tuple<const char*, const char*, std::optional<std::string_view>, const char*> rows[] = {
        {"replace, spelling kept", "[OPTIONS]\n bootgui =1\nx=2\n", "0", "[OPTIONS]\n bootgui =0\nx=2\n"},
        {"replace on an open last line", "[Options]\r\nBootGUI=1", "0", "[Options]\r\nBootGUI=0"},
        {"add before closing blank lines", "[Options]\r\nx=2\r\n\r\n\r\n[Paths]\r\n", "0",
         "[Options]\r\nx=2\r\nBootGUI=0\r\n\r\n\r\n[Paths]\r\n"},
        {"add to an empty section", "[Options]\r\n[Paths]\r\n", "0", "[Options]\r\nBootGUI=0\r\n[Paths]\r\n"},
        {"add behind an open last line", "[Options]\r\nx=2", "0", "[Options]\r\nx=2\r\nBootGUI=0\r\n"},
        {"new section", "[Paths]\r\nx=1", "0", "[Paths]\r\nx=1\r\n[Options]\r\nBootGUI=0\r\n"},
        {"remove", "[Options]\r\n;c\r\nBootGUI=1\r\nodd line\r\n", std::nullopt,
         "[Options]\r\n;c\r\nodd line\r\n"},
        {"remove the last line", "[Options]\nBootGUI=1", std::nullopt, "[Options]\n"},
        {"remove what is not there", "[Options]\r\nx=1", std::nullopt, "[Options]\r\nx=1"},
    };
    for (const auto& [what, before, value, after] : rows)
        EXPECT_EQ(with_profile_value(before, "Options", "BootGUI", value), after) << what;
}

TEST(WindowsPath, IsTakenApartAsWindowsDoesIt) {
    const std::tuple<std::string_view, std::string_view, FileError> rows[] = {
        {"c:\\", "C:\\", no_error},
        {"C:/Documents and Settings//Anna/.\\x", "C:\\Documents and Settings\\Anna\\x", no_error},
        {"C:\\a\\..\\..\\..\\b", "C:\\b", no_error},
        {"C:\\name. . \\file.", "C:\\name\\file", no_error},
        {std::string_view("C:\\a\0\\b", 7), "C:\\a", no_error},
        {"", "", path_access},
        {"NTUSER.DAT", "", no_such_path},
        {"\\\\server\\share\\x", "", no_such_path},
        {"C:file", "", no_such_path},
        {"C:\\...\\x", "", bad_file_name},
        {"C:\\file.txt:stream", "", bad_file_name},
        {"C:\\a*b", "", bad_file_name},
        {"C:\\nul", "", path_access},
        {"C:\\x\\Com1.txt", "", path_access},
    };
    for (const auto& [written, text, error] : rows) {
        const auto path = parse_path(written);
        EXPECT_EQ(path ? no_error : path.error(), error) << written;
        EXPECT_EQ(path ? path->text() : "", text);
    }
}

TEST(WindowsPath, SearchPatternsFitAsOnNT) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"*.*", "Docs", ""},
        {"*", "a.b", ""},
        {"Docs*.*", "docs", "Doc"},
        {"*.lnk", "A.LNK", "lnk"},
        {"*.lnk", "a.b.lnk", "a.lnk2"},
        {"*.", "name", "name.x"},
        {"a?c", "abc", "ac"},
        {"ab??", "ab", "abcde"},
        {"a?.txt", "a.txt", "abc.txt"},
        {"*a*b*c*", "xxaybzc", "acb"},
        {"?.?", "a.b", "aa.b"},
        {"NTUSER.DAT", "ntuser.dat", "ntuser"},
    };
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
