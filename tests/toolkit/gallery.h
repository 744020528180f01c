#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/drawing.h"
#include "toolkit/form.h"
#include "toolkit/toolkit.h"

/// Drives that exist in a test only. D: is there but does not answer.
class PaperFolders : public toolkit::FolderSource {
  public:
    std::vector<char> drives() override { return {'C', 'D'}; }
    std::string folder(std::string_view path) override;
    std::vector<std::string> folders(std::string_view path) override;
    std::vector<std::string> files(std::string_view path) override;

  private:
    struct Content {
        std::vector<std::string> folders;
        std::vector<std::string> files;
    };
    std::map<std::string, Content> content_ = {
        {"C:\\", {{"School", "Windows"}, {"boot.ini"}}},
        {"C:\\School", {{"Room 1"}, {"all.brl", "notes.txt", "Pupils.BRL"}}},
        {"C:\\School\\Room 1", {{}, {"pc1.brl"}}},
        {"C:\\Windows", {{}, {"win.ini"}}},
    };
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
        m_more{m_file, "m_more"}, m_deep{m_more, "m_deep"}, m_unbuilt{m_file, "m_unbuilt"},
        m_help{*this, "m_help"};
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
    toolkit::Label heading{*this, "heading"}, hint{*this, "hint"};
    toolkit::PictureBox picture{*this, "picture"}, photo{*this, "photo"};
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
