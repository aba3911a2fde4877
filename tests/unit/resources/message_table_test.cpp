// The message table as the program delivers it: every id loads to the Shift-JIS bytes of its text, and LoadStringA
// keeps its buffer contract. The texts below are the table's own, in UTF-8; they are turned into Shift-JIS here by the
// platform's converter (iconv on Linux, the code-page calls on Windows), not by the compiler that built the table, so
// a wrong conversion in the build cannot pass.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/winapi.h"
#include "support/hex_text.h"

#ifndef _WIN32
#include <iconv.h>
#endif

namespace {

struct MessageRow {
  unsigned id;
  const char *utf8;
};

// clang-format off
const MessageRow kTable[] = {
    {8013, u8"[読み込み専用]解除後操作を続行します。"},
    {8016, u8"ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ作成/消去には[管理者権限]が必要かもしれません。"},
    {8017, u8"ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞ作成/消去には[管理者権限]が必要かもしれません。ﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞの作成/消去に失敗する可能性がありますが、このまま続行しますか？"},
    {8018, u8"権限の確認"},
    {8035, u8"検索中にCtrl+Escキーが押されました。検索を中止します"},
    {8039, u8"ｱｸｾｽに失敗しました。"},
    {8040, u8"ﾌｫﾙﾀﾞ構造が異常の可能性があります。\nSCANDISK.EXE でﾌｫﾙﾀﾞｴﾝﾄﾘｰの検査をしてください。"},
    {8041, u8"記憶用領域獲得に失敗しました。"},
    {8042, u8"最大格納数"},
    {8043, u8"を超えましたが、続行可能です。"},
    {8045, u8"ﾃﾞｨｽｸ情報の読込に失敗しました。"},
    {8046, u8"ﾌｫﾙﾀﾞの情報の読込に失敗しました。ｽｷｯﾌﾟします。"},
    {8047, u8"ﾌｧｲﾙ名の情報の読込に失敗しました。ｽｷｯﾌﾟします。"},
    {8048, u8"ｱｸｾｸ時にｴﾗｰ発生"},
    {8049, u8"警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ"},
    {8050, u8"ﾌｫﾙﾀﾞ"},
    {8051, u8"ﾌｧｲﾙ"},
    {8053, u8"ﾌｫﾙﾀﾞ・ﾌｧｲﾙ読み込み時にｴﾗｰが発生しました。"},
    {8054, u8"そのまま続行しますか？"},
    {8055, u8"ｼｽﾃﾑﾆよりﾌｫﾙﾀﾞ情報が保護されています。\nﾌｫﾙﾀﾞ内の情報が取得できません。"},
    {8057, u8"AddToGlobalMemory() の警告"},
    {8058, u8"SaveToGlobalMemory() の警告"},
    {8059, u8"の取り込みに失敗しました。"},
    {8060, u8"予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。"},
    {8061, u8"大域ﾒﾓﾘ取得の警告"},
    {8062, u8"ﾒﾓﾘｰｴﾗｰ: 記憶領域の確保失敗!!\n強制終了します。"},
    {8064, u8"ﾌｧｲﾙｱｸｾｽ"},
    {8065, u8"ﾌｫﾙﾀﾞｱｸｾｽ"},
    {8066, u8"指定ﾌｧｲﾙが見つかりません。"},
    {8067, u8"指定ﾌｫﾙﾀﾞが見つかりません。"},
    {8069, u8" ﾄﾞﾗｲﾌﾞのｱｸｾｽに失敗しました。どうしますか？\n      [はい]･･･強制的にﾄﾞﾗｲﾌﾞ変更\n      [いいえ]･･･変更中止"},
    {8070, u8"Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗"},
    {8071, u8"名前に不正な文字が使われています。"},
    {8072, u8"...指定した名前が長すぎます。８文字以内ですか？"},
    {8073, u8"...指定した名前が長すぎます。１１文字以内ですか？\n但し、 '.'を含む時は１２文字以内です。"},
    {8074, u8"...指定した拡張子名が長すぎます。３文字以内ですか？"},
    {8075, u8"ﾌｫﾙﾀﾞ名の指定ﾙｰﾙが間違っています。"},
    {8077, u8"ﾌｫﾙﾀﾞ名不正"},
    {8078, u8"ﾌｧｲﾙ名不正"},
    {8082, u8"ﾄﾞﾗｲﾌﾞのｱｸｾｽが拒否されました。"},
    {8090, u8"ﾌｫﾙﾀﾞ名が指定されていません。空です。"},
    {8111, u8"======消去されなかったﾌｧｲﾙ(ﾌｫﾙﾀﾞ)======"},
    {8112, u8"(先にはありません)"},
    {8113, u8"変更された項目"},
    {8114, u8"(取外可能ﾃﾞｨｽｸ：要確認)"},
    {8115, u8"\n\n[はい]･･再消去  [いいえ]･･次へ  [ｷｬﾝｾﾙ]･･中止"},
    {8116, u8"強制消去用の属性設定ができませんでした。"},
    {8117, u8"消去"},
    {8118, u8" の消去はできませんでした。強制消去しますか？"},
    {8119, u8"ﾌｧｲﾙの消去はできませんでした。"},
    {8120, u8"強制消去"},
    {8121, u8"ﾌｫﾙﾀﾞの消去はできませんでした。次のﾌｫﾙﾀﾞの消去を続行しますか？"},
    {8122, u8"ﾌｫﾙﾀﾞの消去はできませんでした。"},
    {8123, u8" の消去はできません。読込専用に設定されています。強制消去しますか？"},
    {8124, u8"ﾌｧｲﾙの消去はできませんでした。消去を続行しますか？"},
    {8128, u8"[ﾏｲﾈｯﾄﾜｰｸ]"},
    {8188, u8"名前の大小文字の変更に失敗しました。"},
    {8216, u8"ｴﾗ-：編集"},
    {8217, u8"このﾌｧｲﾙは、実行ﾌｧｲﾙなので編集できません。"},
    {8220, u8"ﾈｯﾄﾜｰｸに有効なｺﾝﾋﾟｭｰﾀﾄﾞﾒｲﾝが見つかりません。"},
    {8290, u8"実行"},
    {8292, u8"ﾘﾝｸ先 %s はありません。"},
    {8293, u8"×"},
    {8294, u8"[ﾘﾝｸ先]"},
    {8295, u8"[ｵﾌﾟｼｮﾝ]"},
    {8296, u8"[ｱｲｺﾝ]"},
    {8297, u8"[作業ﾌｫﾙﾀﾞ]"},
    {8298, u8"[ｼﾐｭﾚｰｼｮﾝ]"},
    {8300, u8"ﾈｯﾄﾜｰｸ"},
    {8301, u8"指定したﾊﾟｽﾜｰﾄﾞが無効です。"},
    {8302, u8"ﾈｯﾄﾜｰｸに接続されていません。"},
    {8303, u8"ﾀﾞｲｱﾛｸﾞﾎﾞｯｸｽを起動するための十分なメモリがありません。"},
    {8304, u8"ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽ時にｴﾗｰが発生しました。"},
    {8305, u8"指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞが見つかりません。"},
    {8306, u8"指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞ･ﾌｧｲﾙにはｱｸｾｽできません。"},
    {8307, u8"ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽは拒否されています。\nﾊﾟｽﾜｰﾄﾞが必要かもしれません。\nWindowsのﾊﾟｽﾜｰﾄﾞ入力用ﾎﾞｯｸｽを開きますか？"},
    {8308, u8"\n\n[はい]  ･･･成功するとWindowsがﾌｫﾙﾀﾞを開きます。\n[いいえ]･･･中止する。"},
    {8309, u8"\n\n[はい]  ･･･成功するとWindowsがﾌｫﾙﾀﾞを開きます。\n            ﾈｯﾄﾜｰｸの状態によりしばらく時間がかかる場合があります。\n[いいえ]･･･以降の同じｴﾗｰの表示をしない。   \n[ｷｬﾝｾﾙ] ･･･中止する。"},
    {8311, u8"Windowsはﾌｫﾙﾀﾞを開きましたか？\nｴﾗｰの場合はｳｨﾝﾄﾞｳｽﾞからﾒｯｾｰｼﾞが表示されますのでお待ちください。\n\n"},
    {8314, u8"ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽは拒否されています。\nﾊﾟｽﾜｰﾄﾞが必要かもしれません。"},
    {8402, u8"option"},
    {8403, u8"UseDefine"},
    {8404, u8"folder"},
};
// clang-format on

// Shift-JIS (code page 932) of a UTF-8 text, by the platform's own converter; "<unconvertible>" if it refuses.
std::string Utf8ToShiftJis(const std::string &utf8) {
#ifdef _WIN32
  int wide = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  if (wide <= 0) return "<unconvertible>";
  std::wstring text(static_cast<size_t>(wide), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), &text[0], wide);
  BOOL lossy = FALSE;
  int narrow = WideCharToMultiByte(932, 0, text.data(), wide, nullptr, 0, nullptr, &lossy);
  if (narrow <= 0 || lossy) return "<unconvertible>";
  std::string result(static_cast<size_t>(narrow), '\0');
  WideCharToMultiByte(932, 0, text.data(), wide, &result[0], narrow, nullptr, nullptr);
  return result;
#else
  iconv_t converter = iconv_open("CP932", "UTF-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) return "<no CP932 converter>";
  std::string in = utf8;
  std::string result(in.size() * 2 + 4, '\0');
  char *inPtr = &in[0];
  size_t inLeft = in.size();
  char *outPtr = &result[0];
  size_t outLeft = result.size();
  size_t done = iconv(converter, &inPtr, &inLeft, &outPtr, &outLeft);
  iconv_close(converter);
  if (done == static_cast<size_t>(-1)) return "<unconvertible>";
  result.resize(result.size() - outLeft);
  return result;
#endif
}

// The text of an id as LoadStringA gives it, read from `module`; its length must be that of the text it wrote.
std::string Load(unsigned id, HINSTANCE module = nullptr) {
  char buffer[1040];
  std::memset(buffer, '#', sizeof buffer);
  int length = LoadStringA(module, id, buffer, sizeof buffer);
  std::string text(buffer, length > 0 ? static_cast<size_t>(length) : 0);
  EXPECT_EQ(text, buffer) << "id " << id << ": length and terminator";
  return text;
}

TEST(MessageTable, EveryIdLoadsToItsShiftJisText) {
  for (const MessageRow &row : kTable) EXPECT_EQ(Hex(Load(row.id)), Hex(Utf8ToShiftJis(row.utf8))) << "id " << row.id;
}

// A few rows pinned as bytes, so that even a converter shared by the build and the test cannot pass wrong texts.
TEST(MessageTable, PinnedBytes) {
  EXPECT_EQ(Hex(Load(8018)), Hex("\x8C\xA0\x8C\xC0\x82\xCC\x8A\x6D\x94\x46"));  // 権限の確認
  EXPECT_EQ(Hex(Load(8293)), Hex("\x81\x7E"));                                  // ×
  EXPECT_EQ(Hex(Load(8050)), Hex("\xCC\xAB\xD9\xC0\xDE"));                      // half-width ﾌｫﾙﾀﾞ
  EXPECT_EQ(Load(8403, GetModuleHandleA(nullptr)), "UseDefine");  // the program's module reads the same table
}

TEST(MessageTable, IdsOutsideTheTableAreNotFound) {
  for (unsigned id : {0u, 8012u, 8014u, 8405u, 11200u, 12200u, 65535u}) {
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
  } rows[] = {
      {"room for all", 8402, 7, 6, "option"},
      {"one short: cut to bufferMax-1", 8402, 6, 5, "optio"},
      {"room for the terminator only", 8402, 1, 0, ""},
      {"double-byte text cut between characters", 8018, 5, 4, "\x8C\xA0\x8C\xC0"},
      {"a double-byte character that would not fit whole stays out", 8018, 4, 2, "\x8C\xA0"},
      {"half-width text cuts at any byte", 8050, 3, 2, "\xCC\xAB"},
      {"size 0 writes nothing", 8402, 0, 0, "#"},
      {"negative size writes nothing", 8402, -5, 0, "#"},
  };
  for (const Row &row : rows) {
    char buffer[128];
    std::memset(buffer, '#', sizeof buffer);
    buffer[sizeof buffer - 1] = 0;
    int result = LoadStringA(nullptr, row.id, buffer, row.bufferMax);
    EXPECT_EQ(result, row.result) << row.name;
    if (row.bytes == "#")
      EXPECT_EQ(buffer[0], '#') << row.name;
    else
      EXPECT_EQ(Hex(buffer), Hex(row.bytes)) << row.name;
  }
  EXPECT_EQ(LoadStringA(nullptr, 8402, nullptr, 10), 0) << "null buffer";
  char buffer[64];
  SetLastError(1234);  // a text found leaves the last error alone
  EXPECT_GT(LoadStringA(nullptr, 8018, buffer, sizeof buffer), 0);
  EXPECT_EQ(GetLastError(), 1234u);
}

}  // namespace
