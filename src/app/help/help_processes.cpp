#include "app/help/help_processes.h"

#include <charconv>

#include "base/text.h"
#include "machine/command_line.h"

namespace britlock {

machine::Processes::Started HelpProcesses::start(std::string_view command_line, machine::WindowStyle style) {
    const machine::CommandLine parsed = machine::parse_command_line(command_line);
    if (!text::equal_ignoring_case(parsed.program, "winhlp32.exe")) return others_.start(command_line, style);
    constexpr std::string_view topic_option = "-n ";
    int topic = 0;
    if (parsed.rest.starts_with(topic_option)) {
        (void)std::from_chars(parsed.rest.data() + topic_option.size(),
                              parsed.rest.data() + parsed.rest.size(), topic);
    }
    show_(topic);
    return {machine::no_error, 0};
}

}  // namespace britlock
