#pragma once

#include <QPointer>
#include <QWidget>
#include <utility>
#include <vector>

#include "toolkit/form.h"
#include "toolkit/keyboard.h"

class QAction;
class QMenuBar;
class QScrollArea;

namespace toolkit::qt {

class Strip;

/// The window of a form: fixed in size, the menu bar above the client area, the edition's strip below it.
/// Made when the form is first shown; menu entries and controls that the form gains later have no part in it.
class Window : public QWidget, public WindowPeer {
  public:
    explicit Window(Form& form);
    ~Window() override { form_.peer = nullptr; }

    void refresh() override;
    /// Gives the keyboard to the first control, unless one has it.
    void start_focus();
    void set_strip(const std::vector<std::string>& lines);
    /// The program disabled or hid the widget with the focus: nothing else has it meanwhile, and when the
    /// widget can be used again it is there again.
    void give_back_focus();
    /// On a screen with no room for the whole form.
    void scroll_to(QWidget& widget);

  private:
    void make_menus();
    void add_entries(const std::vector<MenuItem*>& items, QWidget& menu);
    void make_controls();
    void make(Control& control);
    void order_controls();
    void refresh_menus();
    void press(Button* button);
    void open_menu();
    QSize room_for(QSize client, int around) const;
    Control* control_with_focus() const;
    void step_focus(Step step);
    /// The focus is claimed by a widget that cannot have it now.
    bool focus_is_claimed() const;

    bool focusNextPrevChild(bool next) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    Form& form_;
    QMenuBar* menu_bar_;
    QScrollArea* view_;
    QWidget* client_;  ///< in the view
    Strip* strip_;
    QPointer<QWidget> claimant_;
    std::vector<std::pair<MenuItem*, QAction*>> actions_;
};

}  // namespace toolkit::qt
