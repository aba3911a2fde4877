// The scripted network of the tests.
#include "support/scripted_network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "platform/testing.h"

namespace {

ScriptedNetwork *script = nullptr;
const char kProvider[] = "Scripted Network";

// Compares without case, as the browser's names are.
bool SameName(const std::string &a, const std::string &b) { return lstrcmpiA(a.c_str(), b.c_str()) == 0; }

std::string ParentName(const NETRESOURCEA *parent) {
  if (parent == nullptr) return "";
  return parent->lpRemoteName != nullptr ? parent->lpRemoteName : "";
}

DWORD WINAPI ScriptedOpen(DWORD, DWORD, DWORD, LPNETRESOURCEA parent, LPHANDLE handle) {
  ++script->opens_;
  std::string place = ParentName(parent);
  script->opened_.push_back(place);
  DWORD enumerationError = 0;
  for (const ScriptedNetwork::Failure &failure : script->failures_) {
    if (!SameName(failure.place, place)) continue;
    if (failure.atOpen) return failure.error;
    enumerationError = failure.error;
  }
  auto *browse = new ScriptedNetwork::Browse;
  browse->enumerationError = enumerationError;
  bool known = place.empty();
  for (const ScriptedNetwork::Place &candidate : script->places_) {
    if (!place.empty() && SameName(candidate.remote, place)) known = true;
    if (SameName(candidate.parent, place)) browse->records.push_back(&candidate);
  }
  if (!known) {
    delete browse;
    return ERROR_BAD_NETPATH;
  }
  script->browses_.push_back(browse);
  *handle = browse;
  return NO_ERROR;
}

ScriptedNetwork::Browse *FindBrowse(HANDLE handle) {
  auto found = std::find(script->browses_.begin(), script->browses_.end(), handle);
  return found != script->browses_.end() ? *found : nullptr;
}

DWORD WINAPI ScriptedEnumerate(HANDLE handle, LPDWORD count, LPVOID buffer, LPDWORD bufferSize) {
  ++script->enumerations_;
  ScriptedNetwork::Browse *browse = FindBrowse(handle);
  if (browse == nullptr) return ERROR_INVALID_HANDLE;
  if (browse->enumerationError != 0) {
    DWORD error = browse->enumerationError;
    browse->enumerationError = 0;
    return error;
  }
  if (browse->next >= browse->records.size()) return ERROR_NO_MORE_ITEMS;
  char *base = static_cast<char *>(buffer);
  size_t front = 0, back = *bufferSize;
  DWORD taken = 0;
  while (browse->next < browse->records.size() && (*count == 0xFFFFFFFFu || taken < *count) &&
         (script->batchSize_ == 0 || taken < script->batchSize_)) {
    const ScriptedNetwork::Place &place = *browse->records[browse->next];
    size_t strings = place.remote.size() + place.comment.size() + sizeof kProvider + 2;
    if (front + sizeof(NETRESOURCEA) + strings > back) break;
    auto put = [&](const std::string &text) {
      back -= text.size() + 1;
      std::memcpy(base + back, text.c_str(), text.size() + 1);
      return base + back;
    };
    NETRESOURCEA *record = reinterpret_cast<NETRESOURCEA *>(base + front);
    front += sizeof(NETRESOURCEA);
    record->dwScope = RESOURCE_GLOBALNET;
    record->dwType = place.displayType == RESOURCEDISPLAYTYPE_SHARE ? RESOURCETYPE_DISK : RESOURCETYPE_ANY;
    record->dwDisplayType = place.displayType;
    record->dwUsage =
        place.displayType == RESOURCEDISPLAYTYPE_SHARE ? RESOURCEUSAGE_CONNECTABLE : RESOURCEUSAGE_CONTAINER;
    record->lpLocalName = nullptr;
    record->lpRemoteName = put(place.remote);
    record->lpComment = put(place.comment);
    record->lpProvider = put(kProvider);
    ++taken;
    ++browse->next;
  }
  if (taken == 0) return ERROR_MORE_DATA;
  *count = taken;
  return NO_ERROR;
}

DWORD WINAPI ScriptedClose(HANDLE handle) {
  ++script->closes_;
  ScriptedNetwork::Browse *browse = FindBrowse(handle);
  if (browse == nullptr) return ERROR_INVALID_HANDLE;
  script->browses_.erase(std::find(script->browses_.begin(), script->browses_.end(), browse));
  delete browse;
  return script->closeError_;
}

DWORD WINAPI ScriptedLastError(LPDWORD error, LPSTR errorText, DWORD errorTextSize, LPSTR nameText,
                               DWORD nameTextSize) {
  ++script->lastErrorCalls_;
  if (script->extendedText_.empty()) return ERROR_INVALID_PARAMETER;
  *error = script->extendedCode_;
  if (errorTextSize > 0) {
    std::strncpy(errorText, script->extendedText_.c_str(), errorTextSize - 1);
    errorText[errorTextSize - 1] = 0;
  }
  if (nameTextSize > 0) {
    std::strncpy(nameText, kProvider, nameTextSize - 1);
    nameText[nameTextSize - 1] = 0;
  }
  return NO_ERROR;
}

}  // namespace

ScriptedNetwork::ScriptedNetwork() {
  EXPECT_EQ(script, nullptr) << "one scripted network at a time";
  script = this;
  EXPECT_TRUE(TestSwapSystemCall("WNetOpenEnumA", TestCall(&ScriptedOpen)));
  EXPECT_TRUE(TestSwapSystemCall("WNetEnumResourceA", TestCall(&ScriptedEnumerate)));
  EXPECT_TRUE(TestSwapSystemCall("WNetCloseEnum", TestCall(&ScriptedClose)));
  EXPECT_TRUE(TestSwapSystemCall("WNetGetLastErrorA", TestCall(&ScriptedLastError)));
}

ScriptedNetwork::~ScriptedNetwork() {
  for (const char *name : {"WNetOpenEnumA", "WNetEnumResourceA", "WNetCloseEnum", "WNetGetLastErrorA"})
    TestSwapSystemCall(name, nullptr);
  for (Browse *browse : browses_) delete browse;
  script = nullptr;
}

void ScriptedNetwork::AddGroup(const std::string &group) {
  places_.push_back({"", group, "", RESOURCEDISPLAYTYPE_DOMAIN});
}

void ScriptedNetwork::AddServer(const std::string &group, const std::string &server, const std::string &comment) {
  places_.push_back({group, "\\\\" + server, comment, RESOURCEDISPLAYTYPE_SERVER});
}

void ScriptedNetwork::AddShare(const std::string &server, const std::string &share, const std::string &comment) {
  places_.push_back({"\\\\" + server, "\\\\" + server + "\\" + share, comment, RESOURCEDISPLAYTYPE_SHARE});
}

void ScriptedNetwork::FailOpen(const std::string &place, DWORD error) { failures_.push_back({place, error, true}); }
void ScriptedNetwork::FailEnumeration(const std::string &place, DWORD error) {
  failures_.push_back({place, error, false});
}
void ScriptedNetwork::SetExtendedError(DWORD code, const std::string &text) {
  extendedCode_ = code;
  extendedText_ = text;
}
void ScriptedNetwork::SetBatchSize(size_t count) { batchSize_ = count; }
void ScriptedNetwork::FailClose(DWORD error) { closeError_ = error; }
