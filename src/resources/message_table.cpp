// The message table. The texts are written here in UTF-8 so that they can be read and reviewed; the compiler stores
// them as their Shift-JIS bytes (-fexec-charset=CP932), which is what the program shows. There is no resource script:
// one table serves both platforms, and LoadStringA reads it by binary search.
#include "resources/message_table.h"

#include <algorithm>
#include <iterator>

#include "resources/message_ids.h"

namespace {

struct Message {
  unsigned id;
  const char *text;
};

// Sorted by id: the lookup relies on it, and the build checks it below. The names of the special folders (11200 ...)
// and their labels (12200 ...) belong in this same array. One row a line, whatever its length, so that a text reads as
// it is shown.
// clang-format off
constexpr Message kMessages[] = {
    {kMsgReadOnlyCleared, "[読み込み専用]解除後操作を続行します。"},
    {kMsgAdminMayBeNeeded, "ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ作成/消去には[管理者権限]が必要かもしれません。"},
    {kMsgAdminMayBeNeededGoOn, "ｳｲﾝﾄﾞｳｽﾞにより制限されたﾌｫﾙﾀﾞ内のﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞ作成/消去には[管理者権限]が必要かもしれません。ﾌｧｲﾙ･ｻﾌﾞﾌｫﾙﾀﾞの作成/消去に失敗する可能性がありますが、このまま続行しますか？"},
    {kMsgRightsTitle, "権限の確認"},
    {kMsgSearchStoppedByKey, "検索中にCtrl+Escキーが押されました。検索を中止します"},
    {kMsgAccessFailed, "ｱｸｾｽに失敗しました。"},
    {kMsgFolderStructureDamaged, "ﾌｫﾙﾀﾞ構造が異常の可能性があります。\nSCANDISK.EXE でﾌｫﾙﾀﾞｴﾝﾄﾘｰの検査をしてください。"},
    {kMsgNoStorage, "記憶用領域獲得に失敗しました。"},
    {kMsgMaximumCount, "最大格納数"},
    {kMsgMaximumExceededGoOn, "を超えましたが、続行可能です。"},
    {kMsgDiskInfoUnreadable, "ﾃﾞｨｽｸ情報の読込に失敗しました。"},
    {kMsgFolderInfoUnreadable, "ﾌｫﾙﾀﾞの情報の読込に失敗しました。ｽｷｯﾌﾟします。"},
    {kMsgFileNameUnreadable, "ﾌｧｲﾙ名の情報の読込に失敗しました。ｽｷｯﾌﾟします。"},
    {kMsgAccessErrorTitle, "ｱｸｾｸ時にｴﾗｰ発生"},
    {kMsgFolderFileErrorTitle, "警告: ﾌｫﾙﾀﾞ・ﾌｧｲﾙｴﾗｰ"},
    {kMsgFolderWord, "ﾌｫﾙﾀﾞ"},
    {kMsgFileWord, "ﾌｧｲﾙ"},
    {kMsgReadError, "ﾌｫﾙﾀﾞ・ﾌｧｲﾙ読み込み時にｴﾗｰが発生しました。"},
    {kMsgGoOnAsking, "そのまま続行しますか？"},
    {kMsgFolderProtected, "ｼｽﾃﾑﾆよりﾌｫﾙﾀﾞ情報が保護されています。\nﾌｫﾙﾀﾞ内の情報が取得できません。"},
    {kMsgAppendWarningTitle, "AddToGlobalMemory() の警告"},
    {kMsgStoreWarningTitle, "SaveToGlobalMemory() の警告"},
    {kMsgAppendCutShort, "の取り込みに失敗しました。"},
    {kMsgMemoryAccessFailed, "予期せぬｴﾗｰにより記憶領域のｱｸｾｽに失敗しました。"},
    {kMsgGlobalMemoryTitle, "大域ﾒﾓﾘ取得の警告"},
    {kMsgMemoryExhausted, "ﾒﾓﾘｰｴﾗｰ: 記憶領域の確保失敗!!\n強制終了します。"},
    {kMsgFileAccessTitle, "ﾌｧｲﾙｱｸｾｽ"},
    {kMsgFolderAccessTitle, "ﾌｫﾙﾀﾞｱｸｾｽ"},
    {kMsgFileNotFound, "指定ﾌｧｲﾙが見つかりません。"},
    {kMsgFolderNotFound, "指定ﾌｫﾙﾀﾞが見つかりません。"},
    {kMsgDriveAccessFailedAsk, " ﾄﾞﾗｲﾌﾞのｱｸｾｽに失敗しました。どうしますか？\n      [はい]･･･強制的にﾄﾞﾗｲﾌﾞ変更\n      [いいえ]･･･変更中止"},
    {kMsgDriveTitle, "Drive: ﾄﾞﾗｲﾌﾞ・ﾌｫﾙﾀﾞ指定失敗"},
    {kMsgNameHasBadCharacter, "名前に不正な文字が使われています。"},
    {kMsgNameOver8, "...指定した名前が長すぎます。８文字以内ですか？"},
    {kMsgNameOver11, "...指定した名前が長すぎます。１１文字以内ですか？\n但し、 '.'を含む時は１２文字以内です。"},
    {kMsgExtensionOver3, "...指定した拡張子名が長すぎます。３文字以内ですか？"},
    {kMsgFolderNameRuleBroken, "ﾌｫﾙﾀﾞ名の指定ﾙｰﾙが間違っています。"},
    {kMsgBadFolderNameTitle, "ﾌｫﾙﾀﾞ名不正"},
    {kMsgBadFileNameTitle, "ﾌｧｲﾙ名不正"},
    {kMsgDriveAccessRefused, "ﾄﾞﾗｲﾌﾞのｱｸｾｽが拒否されました。"},
    {kMsgFolderNameEmpty, "ﾌｫﾙﾀﾞ名が指定されていません。空です。"},
    {kMsgNotDeletedHeading, "======消去されなかったﾌｧｲﾙ(ﾌｫﾙﾀﾞ)======"},
    {kMsgTargetMissingRemark, "(先にはありません)"},
    {kMsgChangedItemsHeading, "変更された項目"},
    {kMsgRemovableDiskRemark, "(取外可能ﾃﾞｨｽｸ：要確認)"},
    {kMsgDeleteRetryButtons, "\n\n[はい]･･再消去  [いいえ]･･次へ  [ｷｬﾝｾﾙ]･･中止"},
    {kMsgForceDeleteAttributesFailed, "強制消去用の属性設定ができませんでした。"},
    {kMsgDeleteTitle, "消去"},
    {kMsgDeleteFailedForceAsk, " の消去はできませんでした。強制消去しますか？"},
    {kMsgFileNotDeleted, "ﾌｧｲﾙの消去はできませんでした。"},
    {kMsgForceDeleteTitle, "強制消去"},
    {kMsgFolderNotDeletedGoOnAsk, "ﾌｫﾙﾀﾞの消去はできませんでした。次のﾌｫﾙﾀﾞの消去を続行しますか？"},
    {kMsgFolderNotDeleted, "ﾌｫﾙﾀﾞの消去はできませんでした。"},
    {kMsgReadOnlyForceAsk, " の消去はできません。読込専用に設定されています。強制消去しますか？"},
    {kMsgFileNotDeletedGoOnAsk, "ﾌｧｲﾙの消去はできませんでした。消去を続行しますか？"},
    {kMsgMyComputer, "[ﾏｲｺﾝﾋﾟｭｰﾀ]"},
    {kMsgMyNetwork, "[ﾏｲﾈｯﾄﾜｰｸ]"},
    {kMsgCaseChangeFailed, "名前の大小文字の変更に失敗しました。"},
    {kMsgEditErrorTitle, "ｴﾗ-：編集"},
    {kMsgExecutableNotEditable, "このﾌｧｲﾙは、実行ﾌｧｲﾙなので編集できません。"},
    {kMsgNoNetworkDomain, "ﾈｯﾄﾜｰｸに有効なｺﾝﾋﾟｭｰﾀﾄﾞﾒｲﾝが見つかりません。"},
    {kMsgRunTitle, "実行"},
    {kMsgLinkTargetMissing, "ﾘﾝｸ先 %s はありません。"},
    {kMsgCross, "×"},
    {kMsgFieldTarget, "[ﾘﾝｸ先]"},
    {kMsgFieldArguments, "[ｵﾌﾟｼｮﾝ]"},
    {kMsgFieldIcon, "[ｱｲｺﾝ]"},
    {kMsgFieldWorkingFolder, "[作業ﾌｫﾙﾀﾞ]"},
    {kMsgSimulationMark, "[ｼﾐｭﾚｰｼｮﾝ]"},
    {kMsgNetworkTitle, "ﾈｯﾄﾜｰｸ"},
    {kMsgPasswordInvalid, "指定したﾊﾟｽﾜｰﾄﾞが無効です。"},
    {kMsgNetworkNotConnected, "ﾈｯﾄﾜｰｸに接続されていません。"},
    {kMsgNoMemoryForDialog, "ﾀﾞｲｱﾛｸﾞﾎﾞｯｸｽを起動するための十分なメモリがありません。"},
    {kMsgNetworkDriveError, "ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽ時にｴﾗｰが発生しました。"},
    {kMsgNetworkFolderNotFound, "指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞが見つかりません。"},
    {kMsgNetworkFolderNoAccess, "指定したﾈｯﾄﾜｰｸﾌｫﾙﾀﾞ･ﾌｧｲﾙにはｱｸｾｽできません。"},
    {kMsgNetworkRefusedAskPassword, "ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽは拒否されています。\nﾊﾟｽﾜｰﾄﾞが必要かもしれません。\nWindowsのﾊﾟｽﾜｰﾄﾞ入力用ﾎﾞｯｸｽを開きますか？"},
    {kMsgPasswordAskButtons, "\n\n[はい]  ･･･成功するとWindowsがﾌｫﾙﾀﾞを開きます。\n[いいえ]･･･中止する。"},
    {kMsgPasswordAskButtonsQuiet, "\n\n[はい]  ･･･成功するとWindowsがﾌｫﾙﾀﾞを開きます。\n            ﾈｯﾄﾜｰｸの状態によりしばらく時間がかかる場合があります。\n[いいえ]･･･以降の同じｴﾗｰの表示をしない。   \n[ｷｬﾝｾﾙ] ･･･中止する。"},
    {kMsgDidWindowsOpenFolder, "Windowsはﾌｫﾙﾀﾞを開きましたか？\nｴﾗｰの場合はｳｨﾝﾄﾞｳｽﾞからﾒｯｾｰｼﾞが表示されますのでお待ちください。\n\n"},
    {kMsgNetworkRefused, "ﾈｯﾄﾜｰｸﾄﾞﾗｲﾌﾞｱｸｾｽは拒否されています。\nﾊﾟｽﾜｰﾄﾞが必要かもしれません。"},
    {kMsgOptionValueName, "option"},
    {kMsgSettingsKeyName, "UseDefine"},
    {kMsgFolderValueName, "folder"},
};
// clang-format on

constexpr bool SortedById() {
  for (size_t i = 1; i < std::size(kMessages); ++i)
    if (kMessages[i - 1].id >= kMessages[i].id) return false;
  return true;
}
static_assert(SortedById(), "the message table must be sorted by id, without repeats");

}  // namespace

const char *FindMessageText(unsigned id) {
  const Message *end = std::end(kMessages);
  const Message *found =
      std::lower_bound(std::begin(kMessages), end, id, [](const Message &m, unsigned wanted) { return m.id < wanted; });
  if (found == end || found->id != id) return nullptr;
  return found->text;
}
