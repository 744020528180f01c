#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "toolkit/controls.h"

namespace toolkit {

/// The window of a form on the screen.
class WindowPeer {
  public:
    virtual ~WindowPeer() = default;
    /// Caption, size, pointer or menus are new.
    virtual void refresh() = 0;
};

enum class MousePointer { normal = 0, hourglass = 11 };

/// A window and its controls. A form of the program derives from it; its members are its controls. It is
/// loaded when it is made; Toolkit::unload takes it away.
class Form {
  public:
    Form(Toolkit& toolkit, std::string_view name);
    virtual ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    Toolkit& toolkit() const { return toolkit_; }
    const std::string& name() const { return name_; }
    const std::string& caption() const { return caption_; }
    void set_caption(std::string_view caption);
    int client_width() const { return client_width_; }  ///< twips, without the menu bar
    int client_height() const { return client_height_; }
    void set_client_size(int width, int height);
    MousePointer mouse_pointer() const { return mouse_pointer_; }
    void set_mouse_pointer(MousePointer pointer);
    const Drawing* icon() const { return icon_; }
    void set_icon(const Drawing* icon) { icon_ = icon; }
    bool shown() const { return shown_; }

    /// One row of a layout: what stands where, and in what. The order of the rows is the tab order.
    struct LayoutRow {
        Control& control;
        Control* parent;  ///< null: the form
        Rect rect;
    };
    void lay_out(const std::vector<LayoutRow>& rows);

    /// In tab order; controls without a place come last.
    const std::vector<Control*>& controls() const { return controls_; }
    const std::vector<MenuItem*>& menus() const { return menus_; }
    Control* find(std::string_view name) const;

    int help_context = 0;
    /// F1: the help file at the topic of help_context.
    Event on_help;

    /// A person closes the window by its frame.
    virtual void close_by_frame() = 0;

    WindowPeer* peer = nullptr;  ///< not owned; the renderer sets and clears it

  private:
    friend class Control;
    friend class MenuItem;
    friend class Toolkit;
    void refresh();

    Toolkit& toolkit_;
    std::string name_;
    std::string caption_;
    int client_width_ = 0;
    int client_height_ = 0;
    MousePointer mouse_pointer_ = MousePointer::normal;
    const Drawing* icon_ = nullptr;
    bool shown_ = false;
    std::vector<Control*> controls_;
    std::vector<MenuItem*> menus_;
};

}  // namespace toolkit
