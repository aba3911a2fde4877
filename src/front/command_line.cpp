// The command line: argument forms, the typed-line prompt, the option letters, the confirmation.
#include "front/command_line.h"

#include <cstdio>
#include <cstring>

#include "console/console_prompt.h"
#include "console/control_store.h"
#include "files/folder_checks.h"
#include "front/run_driver.h"
#include "front/saved_settings.h"
#include "platform/winapi.h"
#include "text/tokens.h"

namespace {

struct OptionRow {
  char letter;
  const char *description;
  unsigned id;
};

// The order of rows is the order of printing and of the saved-option display. The ids of y and z are out of order on
// purpose: they are the ids that the dialog tool saves in the shared settings.
const OptionRow kOptionTable[] = {
    {'i', "ｼｮｰﾄｶｯﾄﾌｧｲﾙ内のｵﾌﾟｼｮﾝ文字列も含める(include)", kIdIncludeArguments},
    {'m', "大小文字(moji)区別", kIdCaseMatters},
    {'f', "* 先頭(front)から一致 (==> d or c)", kIdMatchFront},
    {'e', "後尾(end)から一致 (==> d or c)", kIdMatchEnd},
    {'a', "一致するものすべて(all) (==> x or y or z)", kIdMatchAll},
    {'d', "* ﾌｫﾙﾀﾞ(directory)単位", kIdFolderUnit},
    {'c', "文字(character)単位", kIdCharacterUnit},
    {'x', "制限無し", kIdNoRestriction},
    {'y', "\\記号で狭まれる文字列／\\記号で始まる最後尾の文字列", kIdBetweenBackslashes},
    {'z', "\\記号含む文字列のみ", kIdWithBackslash},
    {'k', "* 実行前確認(kakunin)有り", kIdConfirm},
    {'p', "* 処理中(processing)に検索ﾌｫﾙﾀﾞ名表示", kIdSavedShowFolders},
    {'r', "* 置換した(replaced)ｼｮｰﾄｶｯﾄ名表示", kIdSavedReportChanged},
    {0, nullptr, 0},
};

const char kClassFront[] = "fea";
const char kClassUnit[] = "dc";
const char kClassAll[] = "xyz";

const char *const kTargetLabels[3] = {"検索ﾌｫﾙﾀﾞ", "旧文字列", "新文字列"};
const unsigned kTargetControlIds[3] = {kIdSearchFolder, kIdOldString, kIdNewString};

// The banner's two framed texts.
const char kOwnershipText[] = " (C)KELMARO開発ﾁｰﾑ";
const char kEditionText[] = "ｺﾝｿｰﾙ版 ｼｮｰﾄｶｯﾄ内文字列一括置換";

enum { kOptionLineSize = 300, kPathTextSize = 520, kArgSlots = 5 };

void *moduleHandle = nullptr;
char optionLine[kOptionLineSize];
char savedFolder[kPathTextSize];
const char *targetTexts[3];
// Writable: the option routine trims the letters in place.
char defaultOptions[] = "-fdkpr";
// What an argument slot holds before anything sets it, and the new string of a typed line of three items whose first
// holds "-": the empty text, which then ends as an empty new string does.
char emptyText[1] = "";

void WaitForAnyKey() { ConsolePrompt(nullptr, nullptr, nullptr, MB_OK); }

// The file-name part of the program path, or the path itself where that gives nothing.
const char *ProgramName(char *programPath) {
  const char *name = SplitFileName(nullptr, programPath);
  return (name == nullptr || *name == 0) ? programPath : name;
}

void PrintSavedState(const char *savedOptionText) {
  ConsolePrintf("\n\n====>ﾚｼﾞｽﾄﾘ> ｵﾌﾟｼｮﾝ：%s 検索ﾌｫﾙﾀﾞ:%s\n", savedOptionText, savedFolder[0] ? savedFolder : "無");
}

// The need texts were meant to name the missing items, but the target texts are not decided yet when they are printed,
// so each item shows as the run-time prints a missing string, "(null)". Users have always seen it so.
void PrintNeedText(bool allThree) {
  const char *folder = targetTexts[0];
  const char *oldText = targetTexts[1];
  const char *newText = targetTexts[2];
  if (allThree)
    ConsolePrintf("\n\n====> [%s] [%s] [%s] を指定してください", folder, oldText, newText);
  else
    ConsolePrintf("\n\n====> [%s] [%s] を指定してください", oldText, newText);
}

void PrintNoFolderState(const char *savedOptionText) {
  ConsolePrintf("\n\n====>ﾚｼﾞｽﾄﾘ> ｵﾌﾟｼｮﾝ：%s 検索ﾌｫﾙﾀﾞ:指定無\n", savedOptionText);
  ConsolePrintf("\n\n====>検索ﾌｫﾙﾀﾞがﾚｼﾞｽﾄﾘにありません：指定してください");
}

// Splits a typed line into the argument slots from slot 1 on. Result: the count as the slots would number it, the
// program included, so that three items give 4 and four give 5. Only slots 1 to 4 are written; further items are
// counted and not kept.
int SplitTypedLine(char *line, char **slots) {
  for (int i = 1; i < kArgSlots; ++i) slots[i] = emptyText;
  int n = 1;
  char *p = line;
  while (*p != 0) {
    char *blank = FirstToken(p);
    if (n < kArgSlots) slots[n] = p;
    ++n;
    if (blank == nullptr) break;
    *blank = 0;
    p = blank + 1;
  }
  return n;
}

// Reads one typed line into the option line, as the prompt loop wants it.
void ReadTypedLine() {
  // At the end of input the line keeps what it held; the question before each read ends such a loop.
  ConsoleReadLine(optionLine, kOptionLineSize);
  optionLine[kOptionLineSize - 1] = 0;
  char *newline = std::strrchr(optionLine, '\n');
  if (newline != nullptr) *newline = 0;
}

}  // namespace

int FindOptionRow(int letter) {
  for (int row = 0; kOptionTable[row].letter != 0; ++row)
    if (static_cast<unsigned char>(kOptionTable[row].letter) == (letter & 0xFF)) return row;
  return -1;
}

int CountClassLetters(const char *letters, const char *classText) {
  int count = 0;
  int found = 0;
  for (const char *p = letters; *p != 0; ++p) {
    for (const char *q = classText; *q != 0; ++q) {
      if (*p == *q) {
        ++count;
        found = static_cast<unsigned char>(*p);
      }
    }
  }
  return count == 1 ? found : 0;
}

int NotBothClasses(const char *letters) {
  return CountClassLetters(letters, kClassUnit) != 0 && CountClassLetters(letters, kClassAll) != 0 ? 0 : 1;
}

int OptionsAreCompatible(const char *letters) {
  int v = CountClassLetters(letters, kClassFront);
  if (v == 0) return 0;
  if ((v == 'f' || v == 'e') && CountClassLetters(letters, kClassUnit) == 0) return 0;
  if (v == 'a' && CountClassLetters(letters, kClassAll) == 0) return 0;
  return NotBothClasses(letters);
}

int ShowUsage(char *programPath, const char *savedOptionText, const char *savedFolderText) {
  const char *name = ProgramName(programPath);
  ConsolePrintf("\n====KELMARO ver.1.10%s====", kOwnershipText);
  ConsolePrintf("\n====%s====", kEditionText);
  ConsolePrintf("\n%s [-", name);
  for (int row = 0; kOptionTable[row].letter != 0; ++row) ConsolePrintf("%c", kOptionTable[row].letter);
  ConsolePrintf("] ");
  for (const char *label : kTargetLabels) ConsolePrintf("%s ", label);
  if (savedOptionText == nullptr) {
    ConsolePrintf("\n   空白のある場合は\"でくくる: \"C:\\Program Files\"");
    ConsolePrintf("\n   \"\"C:\\Program Files\"\"と指定すると\"C:\\Program Files\"になります");
  }
  ConsolePrintf("\n   Windows版のｼｮｰﾄｶｯﾄ内文字列置換ﾀﾞｲｱﾛｸﾞからﾚｼﾞｽﾄﾘに設定可");
  ConsolePrintf("\n   *：既設定   %s はどれかを選択\n", kClassFront);
  for (int row = 0; kOptionTable[row].letter != 0; ++row)
    ConsolePrintf("    -%c %s\n", kOptionTable[row].letter, kOptionTable[row].description);
  if (savedOptionText != nullptr) {
    ConsolePrintf("\nﾚｼﾞｽﾄﾘ内> [ｵﾌﾟｼｮﾝ]%s [検索ﾌｫﾙﾀﾞ]%s", savedOptionText,
                  (savedFolderText && *savedFolderText) ? savedFolderText : "無");
    ConsolePrintf("\n%s ABCD abcd: ﾚｼﾞｽﾄﾘから[ｵﾌﾟｼｮﾝ]と[検索ﾌｫﾙﾀﾞ]使用", name);
    ConsolePrintf("\n%s -fdpr ANCD abcd: ﾚｼﾞｽﾄﾘから[検索ﾌｫﾙﾀﾞ]使用", name);
    ConsolePrintf("\n%s C:\\Windows ANCD abcd: ﾚｼﾞｽﾄﾘから[ｵﾌﾟｼｮﾝ]使用", name);
    ConsolePrintf("\n%s -fdpr C:\\Windows ANCD abcd: ﾚｼﾞｽﾄﾘからは使用せず\n", name);
    ConsolePrompt(nullptr, nullptr, nullptr, MB_OK);
    return 0;
  }
  ConsolePrintf("続けて入力しますか？");
  return ConsolePrompt(nullptr, nullptr, nullptr, MB_YESNO) == IDYES ? 1 : 0;
}

namespace {

// "-" and the letters of the saved options.
enum { kSavedOptionTextSize = sizeof kOptionTable / sizeof kOptionTable[0] + 2 };

// What the saved settings make of the argument forms.
enum SavedStart {
  kSavedDecideNothing,  // no saved options, or a form they do not complete: the direct-or-prompt step decides
  kSavedDecided,        // the slots hold the items, saved ones filled in
  kSavedEndTheRun,      // a usage or a need text has been shown
};

// Reads the saved options into the store and their letters into `savedOptionText`, reads the saved folder, and fills
// the slots from them and the arguments as the count of arguments says.
SavedStart ApplySavedSettings(int argc, char **slots, char *savedOptionText) {
  if (!GetSavedOptions(optionLine, kOptionLineSize)) return kSavedDecideNothing;
  SetCheckedIds(optionLine);
  size_t used = 0;
  savedOptionText[used++] = '-';
  for (int row = 0; kOptionTable[row].letter != 0; ++row)
    if (IsControlChecked(nullptr, kOptionTable[row].id)) savedOptionText[used++] = kOptionTable[row].letter;
  savedOptionText[used] = 0;
  GetSavedFolder(savedFolder, kPathTextSize);

  char *a = slots[1];
  char *b = slots[2];
  char *c = slots[3];
  switch (argc) {
    case 1:
      ShowUsage(slots[0], savedOptionText, savedFolder);
      return kSavedEndTheRun;
    case 2:
      PrintSavedState(savedOptionText);
      PrintNeedText(savedFolder[0] == 0);
      WaitForAnyKey();
      return kSavedEndTheRun;
    case 3:
      if (a[0] == '-') {
        PrintSavedState(savedOptionText);
        PrintNeedText(false);
        WaitForAnyKey();
        return kSavedEndTheRun;
      }
      if (savedFolder[0] == 0) {
        PrintNoFolderState(savedOptionText);
        WaitForAnyKey();
        return kSavedEndTheRun;
      }
      slots[1] = savedOptionText;
      slots[2] = savedFolder;
      slots[3] = a;
      slots[4] = b;
      return kSavedDecided;
    case 4:
      if (a[0] != '-') {
        slots[1] = savedOptionText;
        slots[2] = a;
        slots[3] = b;
        slots[4] = c;
        return kSavedDecided;
      }
      if (savedFolder[0] == 0) {
        PrintNoFolderState(savedOptionText);
        WaitForAnyKey();
        return kSavedEndTheRun;
      }
      slots[1] = a;
      slots[2] = savedFolder;
      slots[3] = b;
      slots[4] = c;
      return kSavedDecided;
    default:
      return kSavedDecideNothing;
  }
}

// Takes a full command line as it stands, or asks for the items until a typed line holds three or four of them.
// Result: false when the user declines to go on.
bool TakeDirectOrTypedArguments(int argc, char **slots) {
  int n = argc;
  for (;;) {
    // A full command line needs no saved settings; argc 5 always runs this way.
    if (n == 4 || n == 5) return true;
    if (!ShowUsage(slots[0], nullptr, nullptr)) return false;
    ConsolePrintf("\n>[-ｵﾌﾟｼｮﾝ] ");
    for (const char *label : kTargetLabels) ConsolePrintf("%s ", label);
    ConsolePrintf("\n>");
    ConsoleFlush();
    ReadTypedLine();
    n = 1;
    if (optionLine[0] == 0) continue;
    n = SplitTypedLine(optionLine, slots);
  }
}

// Decides the options and the three target texts from the slots. Result: the options.
char *DecideItems(char **slots) {
  // The "-" is looked for anywhere in the first item, not only at its start: a folder with a hyphen in its name,
  // given without options, is taken for the options.
  if (FindCharacter(slots[1], '-') != nullptr) {
    targetTexts[0] = slots[2];
    targetTexts[1] = slots[3];
    targetTexts[2] = slots[4];
    return slots[1];
  }
  targetTexts[0] = slots[1];
  targetTexts[1] = slots[2];
  targetTexts[2] = slots[3];
  return defaultOptions;
}

// Each item is copied into a 520-byte text on its way to the store; one that does not fit is refused whole rather
// than cut, before anything is stored. Result: false after the refusal.
bool TargetTextsFit() {
  for (int i = 0; i < 3; ++i) {
    if (std::strlen(targetTexts[i]) >= kPathTextSize) {
      ConsolePrintf("\n\n====> %sが長すぎます：%dﾊﾞｲﾄ以内で指定してください", kTargetLabels[i], kPathTextSize - 1);
      WaitForAnyKey();
      return false;
    }
  }
  return true;
}

// What the option letters ask of the run beyond the store.
struct RunChoice {
  unsigned showFoldersId = 0;
  unsigned reportChangedId = 0;
  int confirm = 0;
};

// Checks the letters behind the first byte of `options` and turns them into checked ids and the run choice. Result:
// the letters, or null after a refusal.
char *ApplyOptions(char *options, RunChoice *choice) {
  char *letters = options + 1;
  TrimLeadingSpace(letters);
  if (!OptionsAreCompatible(letters)) {
    ConsolePrintf(
        "\n 同時に指定できないにオプションが入っています。\n 同時指定不可:%s %s %s (f or e ==>d or c) (a ==> x or y or "
        "z)\n 指定ｵﾌﾟｼｮﾝ  :%s\n",
        kClassFront, kClassUnit, kClassAll, letters);
    WaitForAnyKey();
    return nullptr;
  }

  // State 0 makes 3016 the only checked id: whatever the saved options held is gone from here on.
  SetControlChecked(kIdSearchInFolder, 0);
  bool anyOption = false;
  for (const char *p = letters; *p != 0; ++p) {
    int row = FindOptionRow(static_cast<unsigned char>(*p));
    if (row < 0) continue;
    anyOption = true;
    if (*p == 'p') {
      choice->showFoldersId = kIdFolderDisplay;
    } else if (*p == 'r') {
      choice->reportChangedId = kIdResultLine;
    } else {
      SetControlChecked(kOptionTable[row].id, 1);
      if (*p == 'k') choice->confirm = 1;
    }
  }
  // A line of letters none of which is an option is refused here; today the compatibility test refuses it first.
  if (!anyOption) {
    ConsolePrintf("\n オプション以外の文字が入っています。\nオプション:");
    for (int row = 0; kOptionTable[row].letter != 0; ++row) ConsolePrintf("%c", kOptionTable[row].letter);
    ConsolePrintf(" 指定: %s\n", letters);
    WaitForAnyKey();
    return nullptr;
  }
  return letters;
}

// Checks the folder, puts the three texts into the store and, under k, shows them with the options and asks.
// Result: false after a refusal or a no.
bool StoreAndConfirmTargets(const char *letters, int confirm) {
  if (confirm) ConsolePrintf("次の条件で置換します：\n");
  char scratch[kPathTextSize];
  for (int i = 0; i < 3; ++i) {
    // The folder is checked before any text reaches the store, with or without k.
    if (i == 0 && !FolderExists(targetTexts[0])) {
      ConsolePrintf("\n\n====> %sが見つかりません：", targetTexts[0]);
      WaitForAnyKey();
      return false;
    }
    std::snprintf(scratch, sizeof scratch, "%s", targetTexts[i]);
    StripOuterQuotes(scratch);
    SetControlText(scratch, kTargetControlIds[i]);
    if (confirm) ConsolePrintf("    %s %s\n", kTargetLabels[i], scratch);
  }
  if (!confirm) return true;
  for (const char *p = letters; *p != 0; ++p) {
    int row = FindOptionRow(static_cast<unsigned char>(*p));
    if (row >= 0) ConsolePrintf("    %c:%s\n", kOptionTable[row].letter, kOptionTable[row].description);
  }
  if (ConsolePrompt(nullptr, nullptr, nullptr, MB_YESNO) == IDNO) {
    ConsolePrintf("\n\n====> 中止しました : ");
    WaitForAnyKey();
    return false;
  }
  return true;
}

}  // namespace

int KelmaroMain(int argc, char **argv) {
  moduleHandle = GetModuleHandleA(nullptr);
  // A copy of the argument vector: slot 0 the program, slots 1 to 4 the arguments. Further arguments are not kept;
  // argc still counts them, so that they lead to the prompt.
  char *slots[kArgSlots] = {emptyText, emptyText, emptyText, emptyText, emptyText};
  for (int i = 0; i < argc && i < kArgSlots; ++i) slots[i] = argv[i];

  char savedOptionText[kSavedOptionTextSize] = "";
  switch (ApplySavedSettings(argc, slots, savedOptionText)) {
    case kSavedEndTheRun:
      return 0;
    case kSavedDecideNothing:
      savedOptionText[0] = 0;
      if (!TakeDirectOrTypedArguments(argc, slots)) return 0;
      break;
    case kSavedDecided:
      break;
  }

  char *options = DecideItems(slots);
  targetTexts[0] = PlatformFolderArgument(targetTexts[0]);
  if (!TargetTextsFit()) return 0;
  RunChoice choice;
  char *letters = ApplyOptions(options, &choice);
  if (letters == nullptr) return 0;
  if (!StoreAndConfirmTargets(letters, choice.confirm)) return 0;
  return RunPass(choice.showFoldersId, choice.reportChangedId, choice.confirm);
}
