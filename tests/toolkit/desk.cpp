#include "toolkit/desk.h"

#include <QLoggingCategory>
#include <cstdio>

Desk::Desk(int& argc, char** argv)
    : screen(argc, argv, folders, [] { std::fputs("before the end\n", stderr); }), anchor_(screen, "anchor") {
    instance_ = this;
    anchor_.set_client_size(3000, 1500);
    screen.deliver([this] { screen.show(anchor_); });
}

Desk::~Desk() {
    screen.destroy_window(anchor_);
    instance_ = nullptr;
}

void QtWindow::SetUp() {
    gallery = std::make_unique<Gallery>(screen, Desk::get().folders);
    by_program([this] { screen.show(*gallery); });
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    log();
}

void QtWindow::TearDown() {
    if (!gallery) return;
    by_program([this] { screen.unload(*gallery, [this] { gallery.reset(); }); });
    QCoreApplication::processEvents();
    EXPECT_FALSE(gallery);
}

void QtWindow::type(QWidget& target, const QString& text) {
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, &target, Qt::Key_unknown, letter, Qt::NoModifier);
}

std::string QtWindow::log_soon() {
    std::string out;
    (void)QTest::qWaitFor([&] { return !(out = log()).empty(); });  // told by the text
    return out;
}

int main(int argc, char** argv) {
    // No test needs a screen; with one, they can be watched.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QLoggingCategory::setFilterRules("qt.gui.imageio*=false");  // damaged pictures are meant to be damaged
    Desk desk(argc, argv);
    return RUN_ALL_TESTS();
}
