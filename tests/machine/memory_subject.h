#pragma once

#include "machine/memory/memory_machine.h"
#include "machine/subject.h"

struct MemorySubject : Subject {
    MemorySubject() { memory.add_profile("Anna"); }
    Machine machine() override { return memory.machine(); }
    void add_file(const std::string& path, const std::string& bytes) override {
        memory.files.add_file("C:\\" + path, bytes);
    }
    void add_empty_drive() override {
        memory.system.drives |= 1u << 3;
        memory.files.add_folder("D:\\");
    }
    MemoryMachine memory;
};
