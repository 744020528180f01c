#include <gmock/gmock.h>

#include <QtWidgets>

#include "base/runtime_error.h"
#include "host.h"
#include "machine/memory/memory_machine.h"
#include "platform/folder_browser.h"
#include "report/report.h"
#include "toolkit/qt/printer.h"
#include "toolkit/qt/qt_toolkit.h"

using namespace britlock;

namespace {

struct Pdf : testing::Test {
    static void SetUpTestSuite() { setenv("QT_QPA_PLATFORM", "offscreen", 1); }

    static inline int count = 0;
    machine::MemoryMachine windows;
    FolderBrowser folders{windows.machine()};
    toolkit::QtToolkit screen{count, nullptr, folders, english, [](toolkit::Ending) { return 0; }};
    TemporaryFolder folder;
    RestrictionSet set;

    /// What a person does in the set-up.
    void choose(const std::string& file, bool takes_it = true) {
        QTimer::singleShot(0, [&] {
            auto* window = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(window);
            auto* printers = window->findChild<QComboBox*>();
            printers->setCurrentIndex(printers->findText("PDF file"));
            auto* ok = window->findChild<QDialogButtonBox*>()->buttons().first();
            window->findChild<QLineEdit*>()->clear();
            EXPECT_FALSE(ok->isEnabled()) << "a file without a name";
            window->findChild<QLineEdit*>()->setText(QString::fromStdString(file));
            takes_it ? ok->click() : window->reject();
        });
        screen.set_up_printer();
    }
    void print() {
        print_report(
            *screen.open_printer(), set, [](std::string_view) { return "caption"; }, german);
    }
    void expect_no_printer() {
        EXPECT_THAT([&] { print(); },
                    testing::Throws<RuntimeError>(testing::Property(&RuntimeError::number, 482)));
    }
};

TEST_F(Pdf, HoldsThreePagesAndMoreForALongList) {
    for (const char* pages : {"/Count 3\n", "/Count 7\n"}) {
        choose(folder / "report.pdf");
        print();
        EXPECT_THAT(bytes_of(folder / "report.pdf"),
                    testing::AllOf(testing::StartsWith("%PDF-"), testing::HasSubstr(pages)));
        set.programs.resize(300, "PROGRAM.EXE");
    }
}

TEST_F(Pdf, IsOnlyMadeWhereItCanBe) {
    if (toolkit::qt::PrinterChoice::usual().printer.isEmpty()) expect_no_printer();
    choose("/nowhere/x.pdf");
    expect_no_printer();
    choose(folder / "never.pdf", false);
    expect_no_printer();  // the choice was not taken back
    choose(folder / "half.pdf");
    screen.open_printer()->print("half a page");  // a document that is not ended leaves nothing
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace
