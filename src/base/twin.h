#pragma once

/// Languages by number, a constant of the edition.
enum Language { german = 0, english = 1 };

/// One text in both languages.
struct Twin {
    const char* german;
    const char* english;
};

/// Every choice of a text goes through here. Another language number has no text.
constexpr const char* pick(const Twin& twin, int language) {
    if (language == german) return twin.german;
    if (language == english) return twin.english;
    return "";
}
