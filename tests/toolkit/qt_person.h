#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <memory>

#include "toolkit/person.h"
#include "toolkit/qt/peer.h"
#include "toolkit/qt/qt_toolkit.h"

/// Somebody at the Qt renderer.
class QtPerson : public Person {
  public:
    QtPerson(int& argc, char** argv);
    ~QtPerson() override;
    static QtPerson& get() { return *instance_; }

    toolkit::Toolkit& screen() override { return screen_; }
    toolkit::FolderSource& folders() override { return folders_; }

    void press(Key key) override;
    void press_access(char letter) override;
    void paste(std::string_view ansi) override;
    void type(std::u16string_view text) override;
    void click(const toolkit::Control& control) override;
    void click_line(const toolkit::Control& control, int line) override;
    void double_click_line(const toolkit::Control& control, int line) override;
    void turn_wheel(const toolkit::Control& control, int notches) override;
    void close_window(const toolkit::Form& form) override;
    void at_next_box(Keys keys) override;
    void wait() override;

    std::string sees(const toolkit::Control& control) override;
    bool sees_window(const toolkit::Form& form) override;
    bool is_on_screen(const toolkit::Control& control) override;
    bool is_grey(const toolkit::Control& control) override;
    std::string sees_menu() override;
    const toolkit::Control* keyboard(const toolkit::Form& form) override;
    unsigned colour(const toolkit::Control& control) override;
    Seen last_box() override { return box_; }

    static QWidget& widget(const toolkit::Control& control) {
        return static_cast<toolkit::qt::WidgetPeer*>(control.peer)->widget();
    }
    /// What the person does at the modal window that the next event opens.
    static void at_next_dialog(const std::function<void(QDialog&)>& act);

  private:
    PaperFolders folders_;
    toolkit::QtToolkit screen_;
    Seen box_;
    static inline QtPerson* instance_ = nullptr;
};
