// The message table as the program delivers it: ids load to the Shift-JIS bytes of their texts, and LoadStringA keeps
// its buffer contract.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/winapi.h"
#include "resources/message_ids.h"
#include "support/hex_text.h"

namespace {

// The text of an id as LoadStringA gives it, read from `module`; its length must be that of the text it wrote.
std::string Load(unsigned id, HINSTANCE module = nullptr) {
  char buffer[1040];
  std::memset(buffer, '#', sizeof buffer);
  int length = LoadStringA(module, id, buffer, sizeof buffer);
  std::string text(buffer, length > 0 ? static_cast<size_t>(length) : 0);
  EXPECT_EQ(text, buffer) << "id " << id << ": length and terminator";
  return text;
}

// Texts pinned as bytes: the build turns the UTF-8 source into Shift-JIS, and a wrong conversion shows here (the
// texts themselves are checked where the user sees them, in the command-line tests).
TEST(MessageTable, PinnedBytes) {
  EXPECT_EQ(Hex(Load(kMsgRightsTitle)), Hex("\x8C\xA0\x8C\xC0\x82\xCC\x8A\x6D\x94\x46"));  // 権限の確認
  EXPECT_EQ(Hex(Load(kMsgCross)), Hex("\x81\x7E"));                                        // ×
  EXPECT_EQ(Hex(Load(kMsgFolderWord)), Hex("\xCC\xAB\xD9\xC0\xDE"));                       // half-width ﾌｫﾙﾀﾞ
  EXPECT_EQ(Load(kMsgSettingsKeyName, GetModuleHandleA(nullptr)),
            "UseDefine");  // the program's module reads the same table
}

TEST(MessageTable, IdsOutsideTheTableAreNotFound) {
  for (unsigned id : {0u, 8014u, 8405u, 65535u}) {
    char buffer[16];
    std::memset(buffer, '#', sizeof buffer);
    SetLastError(0);
    EXPECT_EQ(LoadStringA(nullptr, id, buffer, sizeof buffer), 0) << "id " << id;
    EXPECT_EQ(buffer[0], 0) << "id " << id << ": the buffer is emptied";
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND)) << "id " << id;
  }
}

TEST(MessageTable, BufferSizes) {
  struct Row {
    const char *name;
    unsigned id;
    int bufferMax;
    int result;
    std::string bytes;  // the buffer's text; "untouched" rows expect the sentinel '#'
  } rows[] = {{"room for all", kMsgOptionValueName, 7, 6, "option"},
              {"one short: cut to bufferMax-1", kMsgOptionValueName, 6, 5, "optio"},
              {"double-byte text cut between characters", kMsgRightsTitle, 5, 4, "\x8C\xA0\x8C\xC0"},
              {"a double-byte character that would not fit whole stays out", kMsgRightsTitle, 4, 2, "\x8C\xA0"},
              {"half-width text cuts at any byte", kMsgFolderWord, 3, 2, "\xCC\xAB"},
              {"negative size writes nothing", kMsgOptionValueName, -5, 0, "#"}};
  for (const Row &row : rows) {
    char buffer[128];
    std::memset(buffer, '#', sizeof buffer);
    buffer[sizeof buffer - 1] = 0;
    int result = LoadStringA(nullptr, row.id, buffer, row.bufferMax);
    EXPECT_EQ(result, row.result) << row.name;
    EXPECT_EQ(Hex(row.bytes == "#" ? std::string(1, buffer[0]) : buffer), Hex(row.bytes)) << row.name;
  }
  EXPECT_EQ(LoadStringA(nullptr, kMsgOptionValueName, nullptr, 10), 0) << "null buffer";
  char buffer[64];
  SetLastError(1234);  // a text found leaves the last error alone
  EXPECT_GT(LoadStringA(nullptr, kMsgRightsTitle, buffer, sizeof buffer), 0);
  EXPECT_EQ(GetLastError(), 1234u);
}

}  // namespace
