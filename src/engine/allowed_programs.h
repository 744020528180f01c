#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/folder_source.h"

/// The rules of the list of programs that alone may run. Its lines are bare file names.
namespace britlock {

/// The program's own entry: whoever may run only what is listed must be able to run it, since it brings the
/// icons at logon. Case-sensitive.
constexpr const char* this_program = "BRITLOCK.EXE";

/// What the maker suggests.
std::vector<std::string> suggested_programs();

/// Those of `wanted` that the list lacks, compared exactly.
std::vector<std::string> missing_from(const std::vector<std::string>& list,
                                      const std::vector<std::string>& wanted);

/// The line that a chosen program file becomes: its name in capitals, without the folder.
std::string program_entry(std::string_view path);

enum class Removal { allowed, older_version, this_version };
/// May a person take this line off the list?
Removal may_remove(std::string_view entry);

/// Walks a folder and all below it, breadth first, and adds the names of the program files that the list
/// lacks, in whatever case. A RuntimeError ends it; what was found until then is in the list. 6, where list
/// or walk grow beyond 32767.
void scan_for_programs(FolderSource& folders, const std::string& start, std::vector<std::string>& list);

}  // namespace britlock
