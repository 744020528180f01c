#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace toolkit::win32 {

/// Makes `shown` the wanted lines by as few steps as may be: one line that goes from a list of thousands does
/// not fill it anew. `erase(index)`, `insert(index, line)`.
template <class Erase, class Insert>
void follow(std::vector<std::string>& shown, const std::vector<std::string>& wanted, Erase erase,
            Insert insert) {
    const auto differ = std::mismatch(shown.begin(), shown.end(), wanted.begin(), wanted.end());
    const size_t from = differ.first - shown.begin();
    size_t old_end = shown.size();
    size_t new_end = wanted.size();
    while (old_end > from && new_end > from && shown[old_end - 1] == wanted[new_end - 1]) {
        --old_end;
        --new_end;
    }
    for (size_t at = old_end; at > from; --at)
        erase(at - 1);
    for (size_t at = from; at < new_end; ++at)
        insert(at, wanted[at]);
    shown = wanted;
}

}  // namespace toolkit::win32
