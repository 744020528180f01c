#pragma once

#include <string>

#include "machine/registry.h"

/// The running Windows, set up and looked at by other calls than those that are tested. It is one made for
/// the tests.

/// The profile folder of Anna in a folder of profiles, with a hive in it that has the one key that every hive
/// has, in the format of the system that will load it.
void make_anna(const std::string& profiles);
/// Writes the key and all below it into a file that can be loaded as a hive.
void save_key(machine::Root root, const std::string& key, const std::string& file);
void make_folder(const std::string& path);
void remove_folder(const std::string& path);

/// A value as Windows holds it: "dword 1", "text", or what is missing: "no key", "no value".
std::string stored(machine::Root root, const std::string& key, const char* value);
/// The key and all below it.
void remove_key(machine::Root root, const std::string& key);

/// The path with the names that DOS programs see.
std::string short_name(const std::string& path);

/// Holds a file as another program does.
class HeldFile {
  public:
    enum class Against { deleting, everything };
    HeldFile(const std::string& path, Against against);
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile();

  private:
    void* handle_;
};
