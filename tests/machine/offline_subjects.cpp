#include "machine/memory_subject.h"
#include "machine/offline_fixture.h"

namespace {

struct OfflineSubject : Subject {
    Machine machine() override { return offline.machine(); }
    void add_file(const std::string& path, const std::string& bytes) override {
        fs::create_directories((offline.disk() / path).parent_path());
        write_bytes(offline.disk() / path, bytes);
    }
    void add_empty_drive() override {
        offline.options.drives['D'] = (offline.scratch() / "empty").string();
        fs::create_directory(offline.scratch() / "empty");
        offline.open();
    }
    OfflineFixture offline;
};

}  // namespace

std::vector<Implementation> implementations() {
    return {{"memory", make_subject<MemorySubject>}, {"offline", make_subject<OfflineSubject>}};
}
