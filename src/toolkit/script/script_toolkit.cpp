#include "toolkit/script/script_toolkit.h"

namespace toolkit {

namespace {

template <class T>
T take(std::deque<T>& script, const std::string& question) {
    if (script.empty()) throw UnexpectedQuestion("nobody expected: " + question);
    T answer = std::move(script.front());
    script.pop_front();
    return answer;
}

}  // namespace

Answer ScriptToolkit::show_box(const Box& box) {
    (void)HeadlessToolkit::show_box(box);
    const auto foreseen = take(answers_, box.title + ": " + box.text);
    if (foreseen.title != box.title) {
        throw UnexpectedQuestion("expected the box '" + foreseen.title + "', came: " + box.title + ": " +
                                 box.text);
    }
    if (while_box) while_box(box);
    return foreseen.answer;
}

std::string ScriptToolkit::show_input_box(const std::string& title, const std::string& prompt) {
    (void)HeadlessToolkit::show_input_box(title, prompt);
    return take(inputs_, title);
}

std::string ScriptToolkit::ask_file(const FileDialog& dialog) {
    (void)HeadlessToolkit::ask_file(dialog);
    return take(files_, dialog.title);
}

void ScriptToolkit::process_events() {
    if (meanwhile) deliver(meanwhile);
}

}  // namespace toolkit
