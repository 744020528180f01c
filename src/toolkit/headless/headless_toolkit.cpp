#include "toolkit/headless/headless_toolkit.h"

namespace toolkit {

Answer HeadlessToolkit::show_box(const Box& box) {
    boxes.push_back(box);
    return box.default_answer;
}

std::string HeadlessToolkit::show_input_box(const std::string&, const std::string& prompt) {
    prompts.push_back(prompt);
    return {};
}

std::string HeadlessToolkit::ask_file(const FileDialog& dialog) {
    file_dialogs.push_back(dialog);
    return {};
}

}  // namespace toolkit
