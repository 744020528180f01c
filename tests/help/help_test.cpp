#include <gtest/gtest.h>

#include <QtWidgets>

#include "app/help/help_processes.h"
#include "app/help/help_window.h"
#include "base/text.h"
#include "engine/catalogue.h"
#include "machine/memory/memory_machine.h"

using namespace britlock;

namespace {

using namespace machine;

TEST(HelpViewer, StandsInForTheViewerOfWindowsAlone) {
    MemoryMachine windows;
    std::vector<int> shown;
    HelpProcesses processes(windows.processes, [&](int topic) { shown.push_back(topic); });
    const std::string file = "C:\\Program Files\\Brightlock Suite\\britlock.hlp";
    for (const std::string command : {"winhlp32.exe ", "WINHLP32.EXE -n 12 ", "winhlp32.exe -n x "})
        EXPECT_EQ(processes.start(command + file, WindowStyle::normal_focus).error, no_error);
    EXPECT_EQ(shown, (std::vector<int>{0, 12, 0}));
    EXPECT_EQ(processes.start("explorer.exe", WindowStyle::hidden).id, 1u);
    EXPECT_EQ(processes.start("msconfig.exe", WindowStyle::hidden).error, no_such_file);
}

/// What a person reads on the page of a topic.
QString page(int topic, Language language) {
    show_help(topic, language);
    QString text;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* const pages = window->findChild<QTextBrowser*>()) {
            text = pages->toPlainText().replace(" \n", "\n");
            delete window;  // the next may speak another language
        }
    }
    return text;
}

TEST(HelpViewer, ExplainsEachBoxOnItsPageByItsCaption) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 0;
    const QApplication application(count, nullptr);
    for (const Language language : {german, english}) {
        const QString contents = page(0, language);
        EXPECT_TRUE(contents.contains(language == german ? "Erste Schritte" : "First steps"));
        EXPECT_EQ(page(99, language), contents);
        for (const Restriction& row : Get_CR()) {
            if (row.page == 0) continue;
            const QString text = page(9 + row.page, language);
            EXPECT_TRUE(
                text.contains(QString::fromStdString(text::to_utf8(pick(row.caption, language)) + "\n")))
                << row.index;
            EXPECT_TRUE(text.contains(row.value_name ? row.value_name : "MSDOS.SYS")) << row.index;
        }
    }
}

}  // namespace
