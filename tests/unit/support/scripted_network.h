// A network of the test's own for the network listing, on both builds: groups, servers and shares that the browser
// calls (WNetOpenEnumA, WNetEnumResourceA, WNetCloseEnum, WNetGetLastErrorA) give through the swappable call table in
// place of the system's, with failures of the test's choice, and a count of every call. Under Wine it is the only
// network there is; on Linux it stands in front of the share table. One script at a time; its end puts the real
// calls back.
#pragma once

#include <string>
#include <vector>

#include "platform/winapi.h"

class ScriptedNetwork {
 public:
  ScriptedNetwork();
  ~ScriptedNetwork();
  ScriptedNetwork(const ScriptedNetwork &) = delete;
  ScriptedNetwork &operator=(const ScriptedNetwork &) = delete;

  // The network's places, in the order in which the browser lists them. A browse with no parent lists the groups; a
  // group its servers ("\\srv"), a server its shares ("\\srv\share").
  void AddGroup(const std::string &group);
  void AddServer(const std::string &group, const std::string &server, const std::string &comment = "");
  void AddShare(const std::string &server, const std::string &share, const std::string &comment = "");

  // A browse of `place` ("" the top, a group's name, "\\srv") fails: at its opening, or at its first
  // WNetEnumResourceA call, with `error`. ERROR_EXTENDED_ERROR is then told by WNetGetLastErrorA, with `text` as the
  // provider's text (an empty text makes WNetGetLastErrorA itself fail).
  void FailOpen(const std::string &place, DWORD error);
  void FailEnumeration(const std::string &place, DWORD error);
  void SetExtendedError(DWORD code, const std::string &text);
  // At most `count` records per WNetEnumResourceA call (0: as many as fit), so that a level takes several calls.
  void SetBatchSize(size_t count);
  // WNetCloseEnum answers `error` for every browse.
  void FailClose(DWORD error);

  // The calls made since the script began, and the places that were opened, in order ("" for the top).
  size_t Opens() const { return opens_; }
  size_t Enumerations() const { return enumerations_; }
  size_t Closes() const { return closes_; }
  size_t LastErrorCalls() const { return lastErrorCalls_; }
  size_t Calls() const { return opens_ + enumerations_ + closes_ + lastErrorCalls_; }
  const std::vector<std::string> &OpenedPlaces() const { return opened_; }
  // Browses opened and not closed.
  size_t OpenBrowses() const { return browses_.size(); }

  // For the replacement calls.
  struct Place {
    std::string parent;  // "" for a group, the group for a server, the server for a share
    std::string remote;
    std::string comment;
    DWORD displayType;
  };
  struct Failure {
    std::string place;
    DWORD error;
    bool atOpen;
  };
  struct Browse {
    std::vector<const Place *> records;
    size_t next = 0;
    DWORD enumerationError = 0;
  };
  std::vector<Place> places_;
  std::vector<Failure> failures_;
  std::vector<Browse *> browses_;
  std::vector<std::string> opened_;
  DWORD extendedCode_ = 0;
  std::string extendedText_;
  size_t batchSize_ = 0;
  DWORD closeError_ = 0;
  size_t opens_ = 0, enumerations_ = 0, closes_ = 0, lastErrorCalls_ = 0;
};
