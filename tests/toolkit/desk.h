#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <memory>
#include <string>

#include "toolkit/gallery.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/qt_toolkit.h"

/// One Qt application for all tests. A small form of its own stays on show, or the end of a test's form would
/// be that of the process.
class Desk {
  public:
    Desk(int& argc, char** argv);
    ~Desk();
    static Desk& get() { return *instance_; }

    PaperFolders folders;
    struct Screen : toolkit::QtToolkit {
        using QtToolkit::destroy_window;
        using QtToolkit::QtToolkit;
    } screen;

  private:
    struct Anchor : toolkit::Form {
        using Form::Form;
        void close_by_frame() override {}
    } anchor_;
    static inline Desk* instance_ = nullptr;
};

/// The gallery on the screen, in front.
class QtWindow : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    template <class Widget = QWidget>
    static Widget& widget(const toolkit::Control& control) {
        return dynamic_cast<Widget&>(static_cast<toolkit::qt::WidgetPeer*>(control.peer)->widget());
    }
    static void click(QWidget& target, QPoint at = {}) { QTest::mouseClick(&target, Qt::LeftButton, {}, at); }
    static void key(QWidget& target, Qt::Key key, Qt::KeyboardModifiers with = {}) {
        QTest::keyClick(&target, key, with);
    }
    /// Letter by letter, those that no keyboard has included.
    static void type(QWidget& target, const QString& text);
    /// What the person does at the modal window that the next event opens.
    template <class Window = QWidget, class Act>
    static void at_box(Act act) {
        QTimer::singleShot(0, [act] {
            auto* window = dynamic_cast<Window*>(QApplication::activeModalWidget());
            ASSERT_TRUE(window);
            act(*window);
        });
    }
    void by_program(const toolkit::Event& event) { screen.deliver(event); }
    QWidget& window() { return *widget(gallery->bar).window(); }
    std::string log() { return gallery->take_log(); }
    /// The log when something is in it; "" after some seconds.
    std::string log_soon();

    Desk::Screen& screen = Desk::get().screen;
    std::unique_ptr<Gallery> gallery;
};
