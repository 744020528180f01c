#include <gmock/gmock.h>

#include "toolkit/file_filter.h"
#include "toolkit/gallery.h"
#include "toolkit/script/script_toolkit.h"
#include "toolkit/spoken.h"

using namespace toolkit;

namespace {

auto raises(int number) {
    return testing::Throws<RuntimeError>(testing::Property(&RuntimeError::number, number));
}

}  // namespace

/// The model behind the gallery, without a screen.
class Model : public testing::Test {
  protected:
    void SetUp() override {
        screen.act([this] { screen.show(gallery); });
        log();
    }
    std::string log() { return gallery.take_log(); }

    PaperFolders folders;
    ScriptToolkit screen;
    Gallery gallery{screen, folders};
};

TEST_F(Model, ControlsFireOnARealChangeAndRefuseWhatIsNone) {
    for (const int value : {0, 1, 1, 2})
        gallery.tick.set_value(value);
    EXPECT_FALSE(gallery.tick.ticked());
    gallery.tick.click();
    EXPECT_EQ(log(), "tick=1 tick=2 +tick tick=0");
    gallery.tick.set_enabled(false);
    gallery.tick.click();
    gallery.list.set_selected(2);
    gallery.list.remove(0);
    EXPECT_EQ(gallery.list.item(gallery.list.selected()), "R&D.EXE");
    gallery.list.remove(1);
    EXPECT_EQ(gallery.list.selected(), -1);
    EXPECT_EQ(log(), "");
    gallery.list.click_item(1);
    gallery.list.click_item(1);
    gallery.combo.set_text("pupil");
    gallery.combo.choose(1);
    EXPECT_EQ(log(), "-tick +list line 1 line 1 -list +combo chose pupil");
    gallery.name.set_text(std::string_view("bob\0by", 6));
    EXPECT_EQ(gallery.name.text(), "bob");
    gallery.name.type("more than twelve letters");
    EXPECT_EQ(gallery.name.text(), "more than tw");

    EXPECT_EQ(folders_on_the_way("C:\\School\\Room 1"),
              (std::vector<std::string>{"C:\\", "C:\\School", "C:\\School\\Room 1"}));
    EXPECT_EQ(folders_on_the_way("C:\\"), (std::vector<std::string>{"C:\\"}));
    EXPECT_THAT([this] { gallery.tick.set_value(3); }, raises(380));
    EXPECT_THAT([this] { gallery.tab.set_current(9); }, raises(380));
    EXPECT_THAT([this] { gallery.list.set_selected(4); }, raises(9));
    EXPECT_THAT([this] { gallery.drive.set_drive("Q"); }, raises(68));
    EXPECT_THAT([this] { gallery.dir.set_path("C:\\nowhere"); }, raises(76));
    EXPECT_THAT([this] { gallery.picture.load("no picture"); }, raises(481));
    while (gallery.list.count() < 32767)
        gallery.list.add("line");
    EXPECT_THAT([this] { gallery.list.add("one too many"); }, raises(6));
}

TEST_F(Model, HeadlessRunAnswersByDefault) {
    HeadlessToolkit nobody;
    EXPECT_FALSE(nobody.act([&] {
        const Box question{.text = "a\rb\r\nc", .title = {"two\0x", 5}, .default_answer = Answer::no};
        EXPECT_EQ(nobody.message_box(question), Answer::no);
        EXPECT_EQ(nobody.input_box("Name", "Which?") + nobody.ask_file({}), "");
        throw RuntimeError(61);
    }));
    EXPECT_EQ(nobody.ending, Ending::failed);
    EXPECT_EQ(nobody.boxes.at(0).title + ": " + nobody.boxes[0].text, "two: a\nb\nc");
    EXPECT_TRUE(nobody.boxes.at(1).text.starts_with("Run-time error '61'"));
    EXPECT_THROW(nobody.act([] {}), std::logic_error);
}

TEST_F(Model, EverythingThatTakesTheFocusHasANameToSpeak) {
    gallery.unbuilt.set_text("...");
    gallery.combo.set_spoken_name("User");
    // clang-format off
    const std::pair<const Control&, const char*> names[] = {
        {gallery.tick, "Tick this entry of the menu"}, {gallery.second, "No change of the taskbar & the menu"},
        {gallery.name, "Registered Name"}, {gallery.secret, "Disable some entries in your Startmenu..."},  // by the frame
        {gallery.bar, "Restrictions"}, {gallery.tab, "1.) Disable some entries in your Startmenu..."},
        {gallery.combo, "User"}, {gallery.drive, "Choose a folder..."}, {gallery.unbuilt, "Gallery & more ..."}};
    // clang-format on
    for (const auto& [control, name] : names)
        EXPECT_EQ(spoken_name(control), name) << control.name();
    EXPECT_EQ(spoken_tab_name(gallery.tab, 2), "3.) Choose a folder...");
    EXPECT_EQ(label_of(gallery.name), &gallery.name_label);
    EXPECT_EQ(label_of(gallery.combo), nullptr) << "what stands in another frame names nothing";
}

TEST(FileFilter, PatternsAndNames) {
    const auto filters = parse_filters("Programs (*.exe)|*.exe;*.com|All|*.*|left over");
    ASSERT_EQ(filters.size(), 2U);
    EXPECT_EQ(filters[1].description + filters[1].pattern, "All*.*");

    // clang-format off
    const std::tuple<const char*, const char*, bool> matching[] = {
        {"*.brl", "All.BRL", true}, {"*.*", "Makefile", true}, {"*.exe; *.com", "edit.com", true}, {"?at.*", "cat.txt", true},
        {"\xc4*", "\xe4pfel", true}, {"*.brl", "brl", false}, {"?at.*", "at.txt", false}};
    const std::pair<const char*, const char*> typed[] = {
        {"a.brl", "C:\\School\\a.brl"}, {"Room\\a", "C:\\School\\Room\\a"}, {"\\a", "C:\\a"}, {"D:a", "D:\\a"}, {"D:", "D:\\"}};
    // clang-format on
    for (const auto& [pattern, name, does] : matching)
        EXPECT_EQ(matches(name, pattern), does) << pattern << " " << name;
    for (const auto& [name, path] : typed)
        EXPECT_EQ(full_path("C:\\School", name), path);
    EXPECT_EQ(full_path("C:\\", "a.brl"), "C:\\a.brl");
}
