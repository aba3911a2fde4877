// Environment variables that a test changes, put back as they were when the object ends: set to their old values, or
// unset where they were not set.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

class SavedEnvironment {
 public:
  SavedEnvironment(std::initializer_list<const char *> names) {
    for (const char *name : names) {
      const char *value = std::getenv(name);
      saved_.push_back({name, value != nullptr, value != nullptr ? value : ""});
    }
  }
  ~SavedEnvironment() { Restore(); }
  SavedEnvironment(const SavedEnvironment &) = delete;
  SavedEnvironment &operator=(const SavedEnvironment &) = delete;

  // Puts every variable back now (the destructor does it again, to the same values).
  void Restore() const {
    for (const Saved &saved : saved_)
      if (saved.present)
        setenv(saved.name, saved.value.c_str(), 1);
      else
        unsetenv(saved.name);
  }
  // A variable's value when the object was made, null where it was not set.
  const char *Original(const char *name) const {
    for (const Saved &saved : saved_)
      if (std::string(saved.name) == name) return saved.present ? saved.value.c_str() : nullptr;
    return nullptr;
  }

 private:
  struct Saved {
    const char *name;
    bool present;
    std::string value;
  };
  std::vector<Saved> saved_;
};
