#include "engine/allowed_programs.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

#include "base/runtime_error.h"
#include "base/text.h"
#include "engine/engine.h"
#include "engine/keys.h"
#include "platform/numbers.h"

namespace britlock {

namespace {

constexpr const char* older_program = "BRITOL.EXE";

/// Positions and counts of lists are numbers of 16 bits.
constexpr size_t longest_list = std::numeric_limits<int16_t>::max();

void append(std::vector<std::string>& list, std::string entry) {
    if (list.size() == longest_list) throw RuntimeError(6);
    list.push_back(std::move(entry));
}

}  // namespace

std::vector<std::string> suggested_programs() {
    return {"OUTLOOK.EXE",  "EXPLORER.EXE", "EXCEL.EXE",    "MSACCESS.EXE", "WINWORD.EXE",
            "IEXPLORE.EXE", "CALC.EXE",     "CORELDRW.EXE", "ONLINE.EXE"};
}

std::vector<std::string> missing_from(const std::vector<std::string>& list,
                                      const std::vector<std::string>& wanted) {
    std::vector<std::string> missing;
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(missing), [&](const std::string& entry) {
        return std::find(list.begin(), list.end(), entry) == list.end();
    });
    return missing;
}

std::string program_entry(std::string_view path) {
    return text::upper(path.substr(path.find_last_of("\\/:") + 1));
}

Removal may_remove(std::string_view entry) {
    if (entry == older_program) return Removal::older_version;
    return entry == this_program ? Removal::this_version : Removal::allowed;
}

void scan_for_programs(FolderSource& folders, const std::string& start, std::vector<std::string>& list) {
    std::unordered_set<std::string> known;
    for (const std::string& entry : list)
        known.insert(text::upper(entry));
    std::vector<std::string> queue;

    auto take_in_files = [&](const std::string& folder) {
        for (const std::string& file : folders.files(folder)) {
            std::string name = text::upper(file);
            // With or without a dot before it.
            if (name.ends_with("EXE") && known.insert(name).second) append(list, std::move(name));
        }
    };
    auto queue_folders = [&](const std::string& folder) {
        const std::string here = folder + (folder.ends_with('\\') ? "" : "\\");
        for (const std::string& name : folders.folders(folder))
            append(queue, here + name);
    };
    const std::string top = folders.folder(start);
    take_in_files(top);
    queue_folders(top);
    for (size_t k = 0; k < queue.size(); ++k) {
        const std::string folder = folders.folder(queue[k]);
        queue_folders(folder);
        take_in_files(folder);
    }
}

void Engine::read_programs(const Target& from, RestrictionSet& set) {
    set.programs = {this_program};
    const std::string list_key = from.prefix + key::restrict_run;
    const int32_t count = to_long(leading_number(reg_.reg_read_string(from.root, list_key, "Gesamt")));
    if (count > static_cast<int32_t>(longest_list)) throw RuntimeError(6);
    for (int i = 0; i < count; ++i) {
        std::string entry = reg_.reg_read_string(from.root, list_key, number_text(i));
        if (entry != this_program) append(set.programs, std::string(text::up_to_nul(entry)));
    }
}

void Engine::write_programs(const Target& to, const RestrictionSet& set) {
    const std::string list_key = to.prefix + key::restrict_run;
    reg_.reg_delete_key(to.root, list_key);
    if (set.programs.empty()) return;
    reg_.reg_create_key(to.root, list_key);
    const int count = static_cast<int>(set.programs.size());
    for (int i = 0; i < count; ++i)
        (void)reg_.reg_write_string(to.root, list_key, number_text(i), set.programs[i]);
    (void)reg_.reg_write_dword(to.root, list_key, "Gesamt", number_text(count));
}

}  // namespace britlock
