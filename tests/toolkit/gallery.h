#pragma once

#include "machine/memory/memory_machine.h"
#include "platform/folder_browser.h"
#include "toolkit/drawing.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

/// Drives of a machine in memory: C with some folders, and D, which is there but does not answer.
class PaperFolders : machine::MemoryMachine, public britlock::FolderBrowser {
  public:
    PaperFolders() : FolderBrowser(MemoryMachine::machine()) {
        system.drives = 0b1100;
        for (const char* file : {"boot.ini", "School\\all.brl", "School\\notes.txt", "School\\Pupils.BRL",
                                 "School\\Room 1\\pc1.brl"})
            MemoryMachine::files.add_file(std::string("C:\\") + file, "");
    }
};

/// A form with every kind of control, as no program would want it. What happens is written into `log`.
class Gallery : public toolkit::Form {
  public:
    Gallery(toolkit::Toolkit& toolkit, toolkit::FolderSource& source);
    void close_by_frame() override { note("close"); }
    /// The log since the last call.
    std::string take_log() { return std::exchange(log_, {}); }
    void note(const std::string& what) { log_ += (log_.empty() ? "" : " ") + what; }

    toolkit::MenuItem m_file{*this, "m_file"}, m_open{m_file, "m_open"}, m_line{m_file, "m_line"},
        m_more{m_file, "m_more"}, m_deep{m_more, "m_deep"}, m_unbuilt{m_file, "m_unbuilt"};
    toolkit::ListBar bar{*this, "bar"};
    toolkit::TabContainer tab{*this, "tab"};
    toolkit::Frame page1{*this, "page1"}, page2{*this, "page2"}, page3{*this, "page3"};
    toolkit::CheckBox tick{*this, "tick"}, second{*this, "second"}, grey{*this, "grey"};
    toolkit::Label name_label{*this, "name_label"};
    toolkit::TextBox name{*this, "name"}, secret{*this, "secret"};
    toolkit::ListBox list{*this, "list"};
    toolkit::ListView view{*this, "view"};
    toolkit::DriveListBox drive;
    toolkit::DirListBox dir;
    toolkit::FileListBox files;
    toolkit::Frame panel{*this, "panel"};
    toolkit::PictureBox picture{*this, "picture"};
    toolkit::ComboBox combo{*this, "combo"};
    toolkit::Button apply{*this, "apply"}, cancel{*this, "cancel"}, ok{*this, "ok"},
        unbuilt{*this, "unbuilt"};
    toolkit::StatusBar status{*this, "status"};
    toolkit::Timer clock{*this, "clock"};

  private:
    void fill();
    void place_all();
    void listen();

    std::string log_;
};
