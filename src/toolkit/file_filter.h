#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What a file dialog shows and how it completes a name.
namespace toolkit {

struct Filter {
    std::string description;
    std::string pattern;  ///< of names; several are parted by semicolons
};

/// "description|pattern|description|pattern"; a description without a pattern is dropped.
std::vector<Filter> parse_filters(std::string_view text);

/// Without case; * any letters, ? any one letter, *.* every name.
bool matches(std::string_view name, std::string_view pattern);

/// The full path of a typed name: one with a drive, from the drive's root, or in the folder.
std::string full_path(std::string_view folder, std::string_view typed);

}  // namespace toolkit
