#include "toolkit/win32/file_dialog.h"

#include "toolkit/file_filter.h"

namespace toolkit::win32 {

namespace {

constexpr size_t longest_path = 4096;

/// Descriptions and patterns in turn, each with a NUL after it; the text's own NUL ends them.
std::string as_windows_wants(const std::vector<Filter>& filters) {
    std::string out;
    for (const Filter& filter : filters)
        out += filter.description + '\0' + filter.pattern + '\0';
    return out;
}

}  // namespace

std::string ask_file(const FileDialog& dialog, HWND owner, Language language) {
    const bool save = dialog.action == FileDialog::Action::save;
    const std::vector<Filter> filters = parse_filters(dialog.filter);
    const std::string patterns = as_windows_wants(filters);
    const std::string title =
        dialog.title.empty() ? word(save ? Word::save_as : Word::open, language) : dialog.title;
    std::string path(longest_path, '\0');

    OPENFILENAMEA wish{};
    wish.lStructSize = sizeof wish;
    wish.hwndOwner = owner;
    wish.lpstrFilter = filters.empty() ? nullptr : patterns.c_str();
    wish.nFilterIndex = 1;
    wish.lpstrFile = path.data();
    wish.nMaxFile = static_cast<DWORD>(path.size());
    wish.lpstrInitialDir = dialog.start_folder.empty() ? nullptr : dialog.start_folder.c_str();
    wish.lpstrTitle = title.c_str();
    wish.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!(save ? GetSaveFileNameA(&wish) : GetOpenFileNameA(&wish))) return {};
    path.resize(path.find('\0'));
    return path;
}

}  // namespace toolkit::win32
