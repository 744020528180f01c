#pragma once

#include <QFocusEvent>
#include <QWidget>

#include "toolkit/controls.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

namespace toolkit::qt {

/// What the widgets of all controls have in common. The control outlives its widget: both go when no event
/// runs any more, so no call here need ask whether they are still there.
class WidgetPeer : public Peer {
  public:
    WidgetPeer(Control& control, QWidget& widget) : control_(control), widget_(widget) {
        control.peer = this;
    }
    ~WidgetPeer() override { control_.peer = nullptr; }
    WidgetPeer(const WidgetPeer&) = delete;
    WidgetPeer& operator=(const WidgetPeer&) = delete;

    void refresh(const Control& control, Change change) final;
    Control& control() const { return control_; }
    QWidget& widget() const { return widget_; }
    /// A widget is taking over what the program changed: nothing that happens now is a person's doing.
    static bool refreshing() { return refreshing_ > 0; }

  protected:
    /// Shows what this kind of control has besides place, font and the like. Must emit nothing that act()
    /// hears.
    virtual void show_state() = 0;
    /// The same where nothing but one more line is new.
    virtual void show_appended() { show_state(); }

    /// Puts what a person did into the control, then shows what the control made of it: it may have refused.
    template <class Act>
    void act(Act what) {
        control_.form().toolkit().deliver(what);
        refresh(control_, Change::all);
    }
    /// Only a move of the person's is one: not the focus that comes back from a menu, a box or another
    /// window.
    void focus_came(Qt::FocusReason reason);

  private:
    void show_common(Change change);

    static inline int refreshing_ = 0;
    Control& control_;
    QWidget& widget_;
};

/// A Qt widget that shows a control.
template <class Widget, class C>
class Shown : public Widget, public WidgetPeer {
  public:
    Shown(C& control, QWidget& parent) : Widget(&parent), WidgetPeer(control, *this), control_(control) {}

  protected:
    C& control_;

    void focusInEvent(QFocusEvent* event) override {
        Widget::focusInEvent(event);
        focus_came(event->reason());
    }
};

}  // namespace toolkit::qt
