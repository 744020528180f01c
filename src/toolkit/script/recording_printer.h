#pragma once

#include <string>

#include "toolkit/printer.h"

namespace toolkit {

/// Writes what is printed into a text: a line for each line, and for what is not text a mark in square
/// brackets.
class RecordingPrinter : public Printer {
  public:
    explicit RecordingPrinter(std::string& record) : record_(record) { record_.clear(); }

    void set_font(const Font& font) override {
        mark(font.name + " " + std::to_string(font.points) + (font.bold ? " bold" : ""));
    }
    void set_left(int twips) override { mark("left " + std::to_string(twips)); }
    void print(std::string_view ansi) override { record_ += ansi; }
    void tab(int column) override { mark("tab " + std::to_string(column)); }
    void end_line() override { record_ += "\n"; }
    void set_position(int x, int y) override { mark("at " + std::to_string(x) + "," + std::to_string(y)); }
    void new_page() override { record_ += "[page]\n"; }
    void end_document() override { record_ += "[end]\n"; }

  private:
    void mark(const std::string& what) { record_ += "[" + what + "]"; }

    std::string& record_;
};

}  // namespace toolkit
