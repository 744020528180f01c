#pragma once

#include <string>
#include <vector>

#include "toolkit/toolkit.h"
#include "toolkit/win32/system.h"
#include "toolkit/words.h"

/// Modal questions.
namespace toolkit::win32 {

/// While this lives, a person can use the question only: the owner's window is seen to by the question
/// itself, the program's others by this.
class Modal {
  public:
    Modal(const Toolkit& toolkit, HWND owner);
    ~Modal();
    Modal(const Modal&) = delete;
    Modal& operator=(const Modal&) = delete;

  private:
    std::vector<HWND> disabled_;
};

/// How many questions there have been in this process: the click that led to one has had its effect.
int boxes_shown();

Answer ask(const Box& box, HWND owner, Language language);
/// "" where the person cancels.
std::string ask_line(const std::string& title, const std::string& prompt, HWND owner, Language language);

}  // namespace toolkit::win32
