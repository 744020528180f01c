#include <windows.h>

#include <filesystem>

#include "machine/memory_subject.h"
#include "machine/windows/windows_machine.h"
#include "windows/scene.h"

namespace {

/// Another system that runs programs for Windows keeps hives in a format and a way of its own.
bool is_windows_itself() {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr;
}

/// The Windows that the tests run on, which is one made for them: what they leave behind is cleared away by
/// name.
struct WindowsSubject : Subject {
    WindowsSubject() {
        auto& files = windows.machine().files;
        for (const char* folder : {"C:\\Icons", "C:\\Target", "C:\\Documents and Settings\\Anna"})
            remove_folder(folder);
        for (const char* file :
             {"C:\\old.txt", "C:\\locked.txt", "C:\\new.txt", "C:\\grow.bin", "C:\\WINDOWS\\new.ini"}) {
            (void)files.set_attributes(file, attribute_normal);
            (void)files.remove(file);
        }
        remove_key(Root::current_user, "Lock");
        remove_key(Root::local_machine, "Software\\Lock");
        (void)run_command(windows.machine().processes, hive_tool + std::string("unload HKU\\Anna"));
        add_file("MSDOS.SYS", "[Options]\r\n");
        make_anna("C:\\Documents and Settings");
    }

    Machine machine() override { return windows.machine(); }
    void add_file(const std::string& path, const std::string& bytes) override {
        const std::string place = "C:\\" + path;
        make_folder(std::filesystem::path(place).parent_path().string());
        EXPECT_EQ(windows.machine().files.write(place, bytes), no_error) << place;
    }
    void add_empty_drive() override {}  // it has one
    bool mounts_are_real() const override { return is_windows_itself(); }

    WindowsMachine windows;
};

}  // namespace

std::vector<Implementation> implementations() {
    return {{"memory", make_subject<MemorySubject>}, {"windows", make_subject<WindowsSubject>}};
}
