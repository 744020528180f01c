#include <hivex.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>

#include "machine/offline/offline_machine.h"
#include "machine/offline/sample_installation.h"
#include "regf_file/hive_file.h"

// How long an Apply takes beside what the disk asks for, on a hive of so many megabytes:
//   hive_speed make FILE MEGABYTES
//   hive_speed FILE ROUNDS
//   hive_speed growth FILE       how the file grows over 1,000 Applies, each of which changes all values
namespace {

namespace fs = std::filesystem;
using machine::Root;

constexpr auto policies = "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\";
constexpr int keys_written = 10;
constexpr int values_in_each = 10;

void must(bool done, const char* what) {
    if (done) return;
    (void)std::fprintf(stderr, "hive_speed: %s\n", what);
    std::exit(EXIT_FAILURE);
}

// --- what is worked on

std::u16string numbered(std::u16string stem, size_t number) {
    for (const char digit : std::to_string(number))
        stem += static_cast<char16_t>(digit);
    return stem;
}

/// As the sizes of a worn user's hive are spread: mostly numbers and short texts, some lists, a few pictures.
size_t draw_size(std::mt19937& random) {
    const auto dice = random() % 1000;
    if (dice < 400) return 4;
    if (dice < 900) return 8 + random() % 120;
    if (dice < 995) return 200 + random() % 2000;
    return 8000 + random() % 30000;
}

/// Always the same one.
void make_hive(const fs::path& file, size_t bytes) {
    regf::Hive hive = regf::Hive::create({.file_name = u"NTUSER.DAT", .now = 1});
    std::mt19937 random(2001);
    for (int i = 0; i < keys_written; ++i) {
        const std::string path = policies + std::string("Part") + std::to_string(i);
        must(hive.create(std::u16string(path.begin(), path.end()), 1).ok(), "no key");
    }
    for (size_t i = 0; hive.bytes().size() < bytes; ++i) {
        const std::u16string maker = numbered(u"Software\\Maker ", i / 2000);
        const auto key =
            hive.create(maker + numbered(u"\\Product ", i / 40 % 50) + numbered(u"\\Setting ", i), 1);
        must(key.ok(), "no key");
        for (size_t value = 0; value < 1 + i % 4; ++value)
            (void)hive.set_value(*key, numbered(u"Value ", value), {3, regf::Bytes(draw_size(random), 'x')},
                                 1);
    }
    fs::remove(file);
    must(regf::write_new(*hostfile::place_of(file), hive, 1).ok(), "no hive");
}

class Workbench {
  public:
    explicit Workbench(const fs::path& file) {
        std::string name = (fs::temp_directory_path() / "brightlock-speed-XXXXXX").string();
        must(mkdtemp(name.data()) != nullptr, "no folder");
        folder = name;
        must(machine::make_sample_installation((folder / "disk").string(), machine::SampleFamily::winxp).ok(),
             "no installation");
        hive = folder / "disk/Documents and Settings/Anna/NTUSER.DAT";
        fs::copy_file(file, hive, fs::copy_options::overwrite_existing);
        machine::OfflineOptions options;
        options.drives = {{'C', (folder / "disk").string()}};
        options.executables = PROGRAM_FOLDER;
        options.state_folder = (folder / "state").string();
        options.on_report = [](const machine::ToolReport& report) {
            must(report.succeeded, report.detail.c_str());
        };
        auto opened = machine::OfflineMachine::open(options);
        must(opened.ok(), "no machine");
        machine = std::move(*opened);
    }
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;
    ~Workbench() {
        machine.reset();
        fs::remove_all(folder);
    }

    fs::path folder;
    fs::path hive;
    std::unique_ptr<machine::OfflineMachine> machine;
};

// --- who is measured

using Clock = std::chrono::steady_clock;
double milliseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// What nobody can do without: the file is copied, reaches the disk and takes the other's name.
void copy_and_flush(const Workbench& bench) {
    const fs::path copy = bench.folder / "copy";
    const int from = open(bench.hive.c_str(), O_RDONLY);
    const int to = open((copy.string() + ".new").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    struct stat status {};
    must(from >= 0 && to >= 0 && fstat(from, &status) == 0, "no copy");
    for (off_t left = status.st_size; left > 0;) {
        const ssize_t done = copy_file_range(from, nullptr, to, nullptr, static_cast<size_t>(left), 0);
        must(done > 0, "no copy");
        left -= done;
    }
    must(fsync(to) == 0, "no copy");
    (void)close(from);
    (void)close(to);
    fs::rename(copy.string() + ".new", copy);
    const int folder = open(bench.folder.c_str(), O_RDONLY | O_DIRECTORY);
    must(fsync(folder) == 0, "no copy");
    (void)close(folder);
}

void run_tool(Workbench& bench, const std::string& arguments) {
    auto& processes = bench.machine->machine().processes;
    const auto tool = processes.start("\"C:\\Program Files\\Brightlock Suite\\regg.exe\" " + arguments,
                                      machine::WindowStyle::hidden);
    must(tool.error == machine::no_error, "no hive tool");
    while (processes.exit_code(tool.id) == machine::still_active) {
    }
}

void read_values(Workbench& bench) {
    for (int key = 0; key < keys_written; ++key) {
        for (int value = 0; value < values_in_each; ++value) {
            machine::RawValue out;
            (void)bench.machine->machine().registry.query(
                Root::users, "Anna\\" + std::string(policies) + "Part" + std::to_string(key),
                "Value" + std::to_string(value), out);
        }
    }
}

void choose(Workbench& bench) {
    run_tool(bench, "unload HKU\\Anna");
    run_tool(bench, "load \"C:\\Documents and Settings\\Anna\\NTUSER.DAT\" HKU\\Anna");
    read_values(bench);
}

std::string data_of(int round, int value) {
    return {static_cast<char>(round), static_cast<char>(value), 1, 0};
}

void change_and_unload(Workbench& bench, int round) {
    for (int key = 0; key < keys_written; ++key) {
        for (int value = 0; value < values_in_each; ++value) {
            const auto done = bench.machine->machine().registry.set(
                Root::users, "Anna\\" + std::string(policies) + "Part" + std::to_string(key),
                "Value" + std::to_string(value), {machine::reg_dword, data_of(round, value)});
            must(done.action == machine::success, "not written");
        }
    }
    run_tool(bench, "unload HKU\\Anna");
}

/// The values set one by one through another library, whose commit neither flushes nor replaces in one step.
void apply_by_hivex(const Workbench& bench, int round) {
    const fs::path file = bench.folder / "copy";
    hive_h* const hive = hivex_open(file.c_str(), HIVEX_OPEN_WRITE);
    must(hive != nullptr, "hivex cannot read it");
    for (int key = 0; key < keys_written; ++key) {
        hive_node_h node = hivex_root(hive);
        for (const std::string& part :
             {std::string("Software"), std::string("Microsoft"), std::string("Windows"),
              std::string("CurrentVersion"), std::string("Policies"), "Part" + std::to_string(key)})
            node = hivex_node_get_child(hive, node, part.c_str());
        must(node != 0, "hivex finds no key");
        for (int value = 0; value < values_in_each; ++value) {
            std::string name = "Value" + std::to_string(value);
            std::string data = data_of(round, value);
            const hive_set_value set{name.data(), hive_t_REG_DWORD, data.size(), data.data()};
            must(hivex_node_set_value(hive, node, &set, 0) == 0, "hivex writes nothing");
        }
    }
    must(hivex_commit(hive, nullptr, 0) == 0 && hivex_close(hive) == 0, "hivex commits nothing");
}

void apply_by_merge(const Workbench& bench, int round) {
    const fs::path changes = bench.folder / "changes.reg";
    std::ofstream out(changes);
    out << "Windows Registry Editor Version 5.00\n\n";
    for (int key = 0; key < keys_written; ++key) {
        out << "[HKEY_USERS\\" << policies << "Part" << key << "]\n";
        for (int value = 0; value < values_in_each; ++value)
            out << "\"Value" << value << "\"=dword:" << 10000000 + value * 1000 + round << "\n";
        out << "\n";
    }
    out.close();
    const std::string command = "hivexregedit --merge --prefix HKEY_USERS " +
                                (bench.folder / "copy").string() + " " + changes.string();
    must(std::system(command.c_str()) == 0, "no merge");  // NOLINT: the words are ours
}

// --- the table

double median(std::vector<double> all) {
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

long kilobytes(int who) {
    rusage usage{};
    (void)getrusage(who, &usage);
    return usage.ru_maxrss;
}

void measure(Workbench& bench, int rounds) {
    const double size = static_cast<double>(fs::file_size(bench.hive)) / (1 << 20);
    choose(bench);
    change_and_unload(bench, 0);
    choose(bench);  // by now the tools are gone
    const double tool_memory = static_cast<double>(kilobytes(RUSAGE_CHILDREN)) / 1024;

    std::map<std::string, std::vector<double>> times;
    const auto timed = [&](const char* name, const std::function<void()>& work) {
        const auto start = Clock::now();
        work();
        times[name].push_back(milliseconds_since(start));
    };
    for (int round = 1; round <= rounds; ++round) {
        timed("limit", [&] { copy_and_flush(bench); });
        const auto start = Clock::now();
        choose(bench);
        times["choose"].push_back(milliseconds_since(start));
        change_and_unload(bench, round);
        times["apply"].push_back(milliseconds_since(start));
        timed("hivex", [&] { apply_by_hivex(bench, round); });
        timed("merge", [&] { apply_by_merge(bench, round); });
    }
    const double limit = median(times["limit"]);
    std::printf("%6.1f MB  limit %8.1f ms |", size, limit);
    for (const char* name : {"choose", "apply", "hivex", "merge"})
        std::printf(" %s %8.1f ms, %5.2f |", name, median(times[name]), median(times[name]) / limit);
    std::printf(" memory of the tool: hive + %.1f MB\n", tool_memory - size);
}

void tell_growth(Workbench& bench) {
    for (int done = 0; done <= 1000; ++done) {
        if (done == 0 || done == 1 || done == 10 || done == 100 || done == 1000)
            std::printf("after %4d Applies %10ju bytes\n", done,
                        static_cast<uintmax_t>(fs::file_size(bench.hive)));
        choose(bench);
        change_and_unload(bench, done);
    }
}

}  // namespace

int main(int count, char** words) {
    must(count > 2, "hive_speed make FILE MEGABYTES | hive_speed FILE ROUNDS | hive_speed growth FILE");
    const std::string verb = words[1];
    if (verb == "make") {  // in a process of its own, whose memory would be taken for that of the tool
        must(count > 3, "how many megabytes?");
        make_hive(words[2], static_cast<size_t>(std::atof(words[3]) * (1 << 20)));
        return 0;
    }
    Workbench bench(verb == "growth" ? words[2] : words[1]);
    if (verb == "growth") {
        tell_growth(bench);
    } else {
        measure(bench, std::atoi(words[2]));
    }
}
