#include "files/restriction_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "base/runtime_error.h"
#include "files/random_set.h"

namespace britlock {
namespace {

/// The number of the run-time error that reading ends in; 0: none.
int error_of_reading(std::string_view bytes, const RestrictionSet& shown = {}) {
    try {
        (void)read_brl(bytes, shown);
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

std::string repeated(const std::string& line, int times) {
    std::string lines;
    while (times-- > 0)
        lines += line;
    return lines;
}

/// A whole file of zeros, but for the list of programs and the drive C.
std::string file_with(const std::string& count_and_list, const std::string& drive = "0") {
    return "\"BRLCK\"\r\n\"NEVER EDIT THIS FILE!\"\r\n" + repeated("0,", 9) + repeated("0\r\n", 40) +
           repeated("0,", 17) + "0\r\n\"\"\r\n0\r\n" + count_and_list + "0,0," + drive + repeated(",0", 23) +
           "\r\n" + repeated("0,", 17) + "0\r\n\"org\",\"owner\"\r\n\"path\"\r\n";
}

TEST(RestrictionFile, IsWrittenByteForByte) {
    RestrictionSet set;
    for (const int box : {11, 16, 110, 22, 210, 37, 39, 41, 66, 610, 99, 61, 90, 96})
        set.boxes.set(box, 1);
    set.boxes.set(18, 2);
    set.hidden_applets[0] = set.hidden_applets[30] = set.hidden_applets[38] = true;
    set.wallpaper = "C:\\B\xE4r, gro\xDF.bmp";
    set.icon_folder = "C:\\Icons";
    set.programs = {"BRITLOCK.EXE", "a\"b.exe"};
    set.drives = {1, 0, 2};
    set.drives['T' - 'A'] = set.drives['Z' - 'A'] = 1;
    set.machine = {"Schule, Z\xFCrich", "M. B\xFCrgi", "C:\\Documents and Settings\\"};
    EXPECT_EQ(std::regex_replace(brl_text(set), std::regex("\r\n"), "|"),
              R"("BRLCK"|"NEVER EDIT THIS FILE!"|1,0,0,0,0,1,0,2,0,1|1|)" + repeated("0|", 29) + "1|" +
                  repeated("0|", 7) +
                  "1|0,1,0,0,0,0,0,0,0,1|0,0,0,0,0,0,1,0|\"C:\\B\xE4r, "
                  "gro\xDF.bmp\"|1|2|\"BRITLOCK.EXE\"|\"a\"b.exe\"|"
                  "1,0,2,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,0,0,0,0,0,1|0,1,0,0,0,1,0,1|1,0,0,0,1,0,0,0,0,1|"
                  "\"Schule, Z\xFCrich\",\"M. B\xFCrgi\"|\"C:\\Documents and Settings\\\"|");
}

/// What a round trip changes, and nothing else.
RestrictionSet after_a_round_trip(RestrictionSet set, const RestrictionSet& shown) {
    set.machine = {std::to_string(set.boxes[96]), set.machine.organisation, set.machine.owner};
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) set.boxes.set(row.box, set.ticked(row.box));
    }
    set.boxes.set(96, 0);
    set.boxes.set(39, shown.boxes[39]);
    set.icon_folder = shown.icon_folder;
    return set;
}

TEST(RestrictionFile, ComesBackWithTheTextsShifted) {
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i) {
        const RestrictionSet set = random_set(random), shown = random_set(random);
        const auto read = read_brl(brl_text(set), shown);
        ASSERT_TRUE(read);
        ASSERT_EQ(*read, after_a_round_trip(set, shown)) << brl_text(set);
    }
}

TEST(RestrictionFile, BeginsWithTheExactWord) {
    const std::string rest = brl_text({}).substr(32);  // after the word and the warning
    for (const char* start : {"\"BRLCK\",\"NEVER EDIT THIS FILE!\"", "  BRLCK, whatever"})
        EXPECT_TRUE(read_brl(start + rest, {})) << start;
    for (const char* start : {"\"brlck\",x", "BRLCK2,x", "\" BRLCK\",\"\"", ",", "BRLCK ,x"})
        EXPECT_FALSE(read_brl(start + rest, {})) << start;
    EXPECT_EQ(error_of_reading("PK\x03\x04"), 62) << "two fields are read before one is looked at";
}

TEST(RestrictionFile, IsGovernedByTheCount) {
    struct Case {
        std::string list;
        int error;
        std::vector<std::string> programs = {};
        const char* organisation = "0";
    };
    const std::string two = "\"A.EXE\"\r\n\"B.EXE\"\r\n";
    for (const Case& c : std::initializer_list<Case>{
             {"2\r\n" + two, 0, {"A.EXE", "B.EXE"}},
             {"-3\r\n", 0},
             {"none\r\n", 0},
             // One too few: everything after the list is read one field too early, the texts of the machine
             // too.
             {"1\r\n" + two, 0, {"A.EXE"}},
             {"3\r\n" + two, 0, {"A.EXE", "B.EXE", "0"}, "org"},
             // A quote ends the text, and what stands between it and the comma is gone. Nothing else is
             // changed.
             {"2\r\n\"A\"B.EXE\"\r\n\"two\r\nlines, one\"\r\n", 0, {"A", "two\r\nlines, one"}},
             {"3\r\nbare.exe,\"\"\r\n\" britlock.exe \"\r\n", 0, {"bare.exe", "", " britlock.exe "}},
             {"32767\r\n" + repeated("\r\n", 32767), 0, std::vector<std::string>(32767)},
             {"32767\r\n" + two, 62},
             {"32768\r\n" + two, 6},
             {"1\r\n" + std::string(65535, 'x') + "\r\n", 0, {std::string(65535, 'x')}},
             {"1\r\n" + std::string(65536, 'x') + "\r\n", 380}}) {
        SCOPED_TRACE(c.list.substr(0, 50));
        ASSERT_EQ(error_of_reading(file_with(c.list)), c.error);
        if (c.error != 0) continue;
        const auto read = read_brl(file_with(c.list), {});
        EXPECT_TRUE(read->programs == c.programs);
        EXPECT_EQ(read->machine.organisation, c.organisation);
    }
    EXPECT_EQ(read_brl(file_with("0\r\n", "1.5"), {})->drives[2], 2);
    for (const char* drive : {"3", "-1", "2.6"})
        EXPECT_EQ(error_of_reading(file_with("0\r\n", drive)), 380) << drive;
}

TEST(RestrictionFile, ThatEndsEarlyIsNotRead) {
    std::mt19937 random(11);
    RestrictionSet set = random_set(random);
    set.machine.owner = "the owner";
    const std::string whole = brl_text(set);
    const size_t last_read = whole.rfind("\"the owner\"");
    for (size_t length = 0; length < whole.size(); ++length) {
        std::string marked = whole;
        marked[length] = '\x1A';  // the end of a text, whatever follows
        for (const std::string& file : {marked, whole.substr(0, length)})
            ASSERT_EQ(error_of_reading(file), length > last_read ? 0 : 62) << length;
    }
}

/// Changes a file as damage and malice would.
void damage(std::string& bytes, std::mt19937& random) {
    static const char* const pieces[] = {",",  "\"",    "\r\n",       "\x1A", "32767",
                                         "-1", "1E308", "&HFFFFFFFF", "\xFF", "BRLCK"};
    for (unsigned i = 1 + random() % 4; i > 0; --i) {
        const size_t at = random() % bytes.size();
        const std::string copied = bytes.substr(random() % bytes.size(), random() % 160);
        bytes.replace(at, random() % 8, random() % 2 ? pieces[random() % std::size(pieces)] : copied);
    }
}

TEST(RestrictionFile, ThatIsDamagedGivesASetOrAnError) {
    std::mt19937 random(2);
    std::map<int, int> errors;
    for (int i = 0; i < 5000; ++i) {
        std::string bytes = brl_text(random_set(random));
        damage(bytes, random);
        const int error = error_of_reading(bytes);
        ASSERT_THAT(error, testing::AnyOf(0, 6, 62, 380)) << bytes;
        ++errors[error];
        const auto read = error == 0 ? read_brl(bytes, {}) : std::nullopt;
        if (!read) continue;
        EXPECT_THAT(read->drives, testing::Each(testing::AllOf(testing::Ge(0), testing::Le(2)))) << bytes;
        EXPECT_THAT(read->programs, testing::Each(testing::Not(testing::HasSubstr(std::string(1, '\0')))));
    }
    EXPECT_GT(errors[0], 500);
    EXPECT_LT(errors[0], 4500);
}

}  // namespace
}  // namespace britlock
