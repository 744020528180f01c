#include "base/runtime_error.h"

#include <algorithm>
#include <iterator>

namespace {

struct Known {
    int number;
    const char* text;
};

constexpr Known known_errors[] = {
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {9, "Subscript out of range"},
    {13, "Type mismatch"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {93, "Invalid pattern string"},
    {380, "Invalid property value"},
    {481, "Invalid picture"},
    {482, "Printer error"},
};

const char* text_of(int number) {
    const auto* at = std::find_if(std::begin(known_errors), std::end(known_errors),
                                  [&](const Known& k) { return k.number == number; });
    return at == std::end(known_errors) ? "Application-defined or object-defined error" : at->text;
}

}  // namespace

RuntimeError::RuntimeError(int number) : number_(number), text_(text_of(number)) {}
