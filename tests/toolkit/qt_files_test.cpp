#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include "toolkit/person.h"
#include "toolkit/qt/picture.h"
#include "toolkit/qt_person.h"

using namespace toolkit;

namespace {

// 8 by 8 pixels of dark cyan.
constexpr std::string_view gif{
    "GIF87a\010\000\010\000\360\000\000\000\200\200\000\000\000\054\000\000\000\000\010\000\010\000\000\002"
    "\007\204\217\251\313\355\135\000\000\073",
    40};

std::string picture_file(const char* format) {
    if (std::string_view(format) == "gif") return std::string(gif);
    QImage image(24, 16, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format)) << format;
    return buffer.data().toStdString();
}

}  // namespace

TEST(Picture, ShowsTheFormatsOfADesktopOnly) {
    for (const char* format : {"bmp", "ico", "jpeg", "gif"})
        EXPECT_FALSE(qt::decode_picture(picture_file(format)).isNull()) << format;
    for (const char* format : {"png", "ppm", "xpm"})
        EXPECT_TRUE(qt::decode_picture(picture_file(format)).isNull()) << format;
    std::string bomb = picture_file("bmp");
    bomb.replace(18, 8, std::string("\xff\x3f\0\0\xff\x3f\0\0", 8));  // 16383 by 16383 pixels
    EXPECT_TRUE(qt::decode_picture(bomb).isNull());
}

TEST(Picture, ShowsNoMemoryWhereTheFileEndsEarlyAndSurvivesHostileBytes) {
    for (const char* format : {"bmp", "ico", "jpeg", "gif"}) {
        const std::string whole = picture_file(format);
        const bool lossless = format[0] == 'b' || format[0] == 'g';
        for (size_t i = 0; i < whole.size(); ++i) {
            const QImage cut = qt::decode_picture(std::string_view(whole).substr(0, i));
            for (int pixel = 0; lossless && pixel < cut.width() * cut.height(); ++pixel) {
                const QColor colour = cut.pixelColor(pixel % cut.width(), pixel / cut.width());
                const bool known = colour == Qt::darkCyan || colour == Qt::white || colour == Qt::black;
                ASSERT_TRUE(known || colour.alpha() == 0) << format << " of " << i << " bytes";
            }
            for (const char flip : {'\x01', '\x80', '\xff'}) {
                std::string damaged = whole;
                damaged[i] ^= flip;
                const QImage image = qt::decode_picture(damaged);
                EXPECT_LE(std::max(image.width(), image.height()), 16384);
            }
        }
    }
}

/// The dialog, as the hand and the eye find their way in it.
struct Seen {
    QDialog& box;
    QListView& files = *box.findChildren<QListView*>()[0];
    QListView& folders = *box.findChildren<QListView*>()[1];
    QComboBox& filters = *box.findChildren<QComboBox*>()[0];
    QComboBox& drives = *box.findChildren<QComboBox*>()[1];
    QLineEdit& name = *box.findChild<QLineEdit*>();

    static std::string lines(const QListView& list) {
        std::string out;
        for (int i = 0; i < list.model()->rowCount(); ++i)
            out += list.model()->index(i, 0).data().toString().toStdString() + "/";
        return out;
    }
    void enter(const QString& typed) {
        name.clear();
        QTest::keyClicks(&name, typed);
        QTest::keyClick(&name, Qt::Key_Return);
    }
};

std::string ask(FileDialog dialog, const std::function<void(Seen)>& act) {
    dialog.filter = "Restrictions|*.brl|All files|*.*";
    std::string path;
    at_next_dialog([act](QDialog& box) {
        act({box});
        if (box.isVisible()) box.reject();
    });
    Toolkit& screen = the_person->screen();
    screen.deliver([&] { path = screen.ask_file(dialog); });
    return path;
}

TEST(QtFileDialog, WalksByKeysAndFilters) {
    const auto path = ask({.start_folder = "c:\\school"}, [](Seen seen) {
        EXPECT_EQ(Seen::lines(seen.files), "all.brl/Pupils.BRL/");
        EXPECT_EQ(Seen::lines(seen.folders), "C:\\/School/Room 1/");
        for (const auto& [key, files] : {std::pair{Qt::Key_Down, "pc1.brl/"}, {Qt::Key_Home, ""}}) {
            QTest::keyClick(&seen.folders, key);
            QTest::keyClick(&seen.folders, Qt::Key_Return);
            EXPECT_EQ(Seen::lines(seen.files), files);
        }
        QTest::keyClick(&seen.filters, Qt::Key_Down);
        EXPECT_EQ(Seen::lines(seen.files), "boot.ini/");
        QTest::keyClick(&seen.files, Qt::Key_Down);
        EXPECT_EQ(seen.name.text(), "boot.ini");
        QTest::keyClick(&seen.box, Qt::Key_Return);
    });
    EXPECT_EQ(path, "C:\\boot.ini");
    EXPECT_EQ(ask({},
                  [](Seen seen) {
                      EXPECT_EQ(Seen::lines(seen.folders),
                                "C:\\/Documents and Settings/Program Files/School/WINDOWS/");
                  }),
              "");
}

TEST(QtFileDialog, TakesTypedNames) {
    const FileDialog open{.start_folder = "C:\\School"};
    const FileDialog save{.action = FileDialog::Action::save, .start_folder = "C:\\School"};
    for (const auto& [dialog, typed, path] : {std::tuple{open, "new", "C:\\School\\new"},
                                              {save, "new", "C:\\School\\new"},  // no ending is added
                                              {save, "\\new.txt", "C:\\new.txt"}})
        EXPECT_EQ(ask(dialog, [&name = typed](Seen seen) { seen.enter(name); }), path);
    const auto walked = ask(save, [](Seen seen) {
        seen.enter("");
        seen.enter("*.txt");
        EXPECT_EQ(Seen::lines(seen.files), "notes.txt/");
        seen.enter("room 1");
        EXPECT_EQ(Seen::lines(seen.folders), "C:\\/School/Room 1/");
        seen.enter("pc2");
    });
    EXPECT_EQ(walked, "C:\\School\\Room 1\\pc2");
}

TEST(QtFileDialog, SaysSoWhenADriveDoesNotAnswer) {
    ask({.start_folder = "D:\\gone"}, [](Seen seen) {
        const std::string before = Seen::lines(seen.folders);
        EXPECT_TRUE(before.starts_with("C:\\/"));
        the_person->at_next_box("Return");
        QTest::keyClick(&seen.drives, Qt::Key_Down);
        EXPECT_TRUE(the_person->box.text.starts_with("D: ist nicht zu erreichen"));
        EXPECT_EQ(seen.drives.currentText(), "C:");
        EXPECT_EQ(Seen::lines(seen.folders), before);
    });
}
