#include <gtest/gtest.h>

#include <QApplication>
#include <QTextBrowser>

#include "app/help/help_processes.h"
#include "app/help/help_window.h"
#include "base/text.h"
#include "engine/catalogue.h"
#include "machine/memory/memory_machine.h"

namespace britlock {
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
std::string page(int topic, int language) {
    show_help(topic, language);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* const pages = window->findChild<QTextBrowser*>();
        if (!pages) continue;
        std::string text = pages->toPlainText().replace(" \n", "\n").toStdString();
        delete window;  // the next may speak another language
        return text;
    }
    return "(no window)";
}

TEST(HelpViewer, ExplainsEachBoxOnItsPageByItsCaption) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static char name[] = "test";
    char* arguments[] = {name, nullptr};
    int count = 1;
    const QApplication application(count, arguments);
    for (const int language : {german, english}) {
        const std::string contents = page(0, language);
        EXPECT_NE(contents.find(language == german ? "Erste Schritte" : "First steps"), std::string::npos);
        EXPECT_EQ(page(99, language), contents);
        for (const Restriction& row : Get_CR()) {
            if (row.page == 0) continue;
            const std::string text = page(9 + row.page, language);
            EXPECT_NE(text.find(text::to_utf8(pick(row.caption, language)) + "\n"), std::string::npos)
                << row.index;
            const std::string value = row.value_name ? row.value_name : "MSDOS.SYS";
            EXPECT_NE(text.find(value), std::string::npos) << row.index;
        }
    }
}

}  // namespace
}  // namespace britlock
