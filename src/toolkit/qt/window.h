#pragma once

#include <QWidget>
#include <utility>
#include <vector>

#include "toolkit/form.h"

class QAction;
class QMenuBar;

namespace toolkit::qt {

/// The window of a form: fixed in size, the menu bar above the client area. Made when the form is first
/// shown; menu entries and controls that the form gains later have no part in it.
class Window : public QWidget, public WindowPeer {
  public:
    explicit Window(Form& form);
    ~Window() override { form_.peer = nullptr; }

    void refresh() override;

  private:
    void make_menus();
    void add_entries(const std::vector<MenuItem*>& items, QWidget& menu);
    void make_controls();
    void make(Control& control);
    void order_controls();
    void refresh_menus();
    void press(bool Button::*role);

    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    Form& form_;
    QMenuBar* menu_bar_;
    QWidget* client_;
    std::vector<std::pair<MenuItem*, QAction*>> actions_;
};

}  // namespace toolkit::qt
