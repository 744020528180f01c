#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <fstream>

#include "base/runtime_error.h"
#include "machine/memory/memory_machine.h"
#include "platform/folder_browser.h"
#include "report/report.h"
#include "temporary_folder.h"
#include "toolkit/qt/printer.h"
#include "toolkit/qt/qt_toolkit.h"

namespace britlock {
namespace {

struct Pdf : testing::Test {
    static void SetUpTestSuite() { setenv("QT_QPA_PLATFORM", "offscreen", 1); }

    static inline int count = 1;
    static inline char name[] = "pdf_test";
    static inline char* arguments[] = {name, nullptr};
    machine::MemoryMachine windows{machine::versions::winxp};
    FolderBrowser folders{windows.machine()};
    toolkit::QtToolkit screen{count, arguments, folders, english, [](toolkit::Ending) { return 0; }};
    TemporaryFolder folder;

    /// What a person does in the set-up.
    void set_up(const std::function<void(QDialog&)>& act) {
        QTimer::singleShot(0, [&] {
            auto* window = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(window);
            act(*window);
        });
        screen.set_up_printer();
    }
    void choose(const std::string& file) {
        set_up([&](QDialog& window) {
            auto* printers = window.findChild<QComboBox*>();
            printers->setCurrentIndex(printers->findText("PDF file"));
            auto* ok = window.findChild<QDialogButtonBox*>()->buttons().first();
            window.findChild<QLineEdit*>()->clear();
            EXPECT_FALSE(ok->isEnabled()) << "a file without a name";
            window.findChild<QLineEdit*>()->setText(QString::fromStdString(file));
            ok->click();
        });
    }
    int error_of_printing(const RestrictionSet& set) {
        try {
            const CaptionOf caption_of = [](std::string_view control) { return std::string(control); };
            print_report(*screen.open_printer(), set, caption_of, german);
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    }
    /// Of a document that is printed into a new file.
    int pages(const RestrictionSet& set) {
        choose(folder / "report.pdf");
        EXPECT_EQ(error_of_printing(set), 0);
        std::ifstream in(folder / "report.pdf", std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        EXPECT_THAT(bytes, testing::StartsWith("%PDF-"));
        int found = 0;
        for (size_t at = 0; (at = bytes.find("/Type /Page\n", at)) != std::string::npos; ++at)
            ++found;
        return found;
    }
};

TEST_F(Pdf, HoldsThreePagesAndMoreForALongList) {
    RestrictionSet set;
    EXPECT_EQ(pages(set), 3);
    for (int i = 1; i <= 300; ++i)
        set.programs.push_back("PROGRAM" + std::to_string(i) + ".EXE");
    EXPECT_EQ(pages(set), 7);
}

TEST_F(Pdf, IsOnlyMadeWhereItCanBe) {
    if (toolkit::qt::PrinterChoice::usual().printer.isEmpty()) {
        EXPECT_EQ(error_of_printing({}), 482) << "no printer, and no file chosen";
    }
    choose("/nowhere/x.pdf");
    EXPECT_EQ(error_of_printing({}), 482);
    set_up([&](QDialog& window) {
        window.findChild<QLineEdit*>()->setText(QString::fromStdString(folder / "never.pdf"));
        window.reject();
    });
    EXPECT_EQ(error_of_printing({}), 482) << "the choice was not taken back";
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "never.pdf"));

    // A document that is not ended leaves nothing.
    choose(folder / "half.pdf");
    screen.open_printer()->print("half a page");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "half.pdf"));
}

}  // namespace
}  // namespace britlock
