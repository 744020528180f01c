#include <gtest/gtest.h>

#include <QBuffer>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListView>
#include <QTest>

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

class QtFileDialog : public testing::Test {
  protected:
    template <class Act>
    std::string ask(FileDialog dialog, Act act) {
        dialog.filter = "Restrictions|*.brl|All files|*.*";
        std::string path;
        at_next_dialog([act](QDialog& box) {
            act(box);
            if (box.isVisible()) box.reject();
        });
        screen.deliver([&] { path = screen.ask_file(dialog); });
        return path;
    }
    static QListView& list(QDialog& box, int index) { return *box.findChildren<QListView*>()[index]; }
    static std::string lines(QDialog& box, int index) {
        std::string out;
        const auto* model = list(box, index).model();
        for (int i = 0; i < model->rowCount(); ++i)
            out += model->index(i, 0).data().toString().toStdString() + "/";
        return out;
    }
    static void enter(QDialog& box, const QString& name) {
        auto& line = *box.findChild<QLineEdit*>();
        line.clear();
        QTest::keyClicks(&line, name);
        key(line, Qt::Key_Return);
    }
    static void key(QWidget& target, Qt::Key key) { QTest::keyClick(&target, key); }

    enum { files, folders };
    Toolkit& screen = the_person->screen();
};

TEST_F(QtFileDialog, WalksByKeysAndFilters) {
    const auto path = ask({.start_folder = "c:\\school"}, [](QDialog& box) {
        EXPECT_EQ(lines(box, files), "all.brl/Pupils.BRL/");
        EXPECT_EQ(lines(box, folders), "C:\\/School/Room 1/");
        key(list(box, folders), Qt::Key_Down);
        key(list(box, folders), Qt::Key_Return);
        EXPECT_EQ(lines(box, files), "pc1.brl/");
        key(list(box, folders), Qt::Key_Home);
        key(list(box, folders), Qt::Key_Return);
        EXPECT_EQ(lines(box, files), "");
        auto& filter = *box.findChildren<QComboBox*>()[0];
        key(filter, Qt::Key_Down);
        EXPECT_EQ(lines(box, files), "boot.ini/");
        key(list(box, files), Qt::Key_Down);
        EXPECT_EQ(box.findChild<QLineEdit*>()->text(), "boot.ini");
        key(box, Qt::Key_Return);
    });
    EXPECT_EQ(path, "C:\\boot.ini");
    EXPECT_EQ(ask({}, [](QDialog& box) { EXPECT_EQ(lines(box, folders), "C:\\/School/Windows/"); }), "");
}

TEST_F(QtFileDialog, TakesTypedNames) {
    const FileDialog open{.start_folder = "C:\\School"};
    const FileDialog save{.action = FileDialog::Action::save, .start_folder = "C:\\School"};
    EXPECT_EQ(ask(open, [](QDialog& box) { enter(box, "new"); }), "C:\\School\\new");
    EXPECT_EQ(ask(save, [](QDialog& box) { enter(box, "new"); }), "C:\\School\\new") << "no ending is added";
    EXPECT_EQ(ask(save, [](QDialog& box) { enter(box, "\\new.txt"); }), "C:\\new.txt");
    EXPECT_EQ(ask(save,
                  [](QDialog& box) {
                      enter(box, "");
                      enter(box, "*.txt");
                      EXPECT_EQ(lines(box, files), "notes.txt/");
                      enter(box, "room 1");
                      EXPECT_EQ(lines(box, folders), "C:\\/School/Room 1/");
                      enter(box, "pc2");
                  }),
              "C:\\School\\Room 1\\pc2");
}

TEST_F(QtFileDialog, SaysSoWhenADriveDoesNotAnswer) {
    ask({.start_folder = "D:\\gone"}, [](QDialog& box) {
        const std::string before = lines(box, folders);
        EXPECT_TRUE(before.starts_with("C:\\/"));
        auto& drives = *box.findChildren<QComboBox*>()[1];
        EXPECT_EQ(drives.currentText(), "C:");
        the_person->at_next_box("Return");
        key(drives, Qt::Key_Down);
        EXPECT_TRUE(the_person->box.text.starts_with("D: ist nicht zu erreichen"));
        EXPECT_EQ(drives.currentText(), "C:");
        EXPECT_EQ(lines(box, folders), before);
    });
}
