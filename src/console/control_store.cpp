// The control-state store.
#include "console/control_store.h"

#include <cstdio>
#include <cstring>

#include "text/tokens.h"

namespace {

char checkedIds[kControlTextSize];
// One spare row beyond the four, so that a fifth add (which the front end never makes) cannot write past the table.
char controlTexts[kControlTextRows + 1][kControlTextSize];
int controlTextCount = 0;
int selectionTable[1];

}  // namespace

void SetCheckedIds(const char *text) {
  // The saved value is at most 300 bytes (the size it is read into), so it always fits.
  std::snprintf(checkedIds, sizeof checkedIds, "%s", text ? text : "");
}

void SetControlChecked(unsigned id, int state) {
  if (state == 0) {
    std::snprintf(checkedIds, sizeof checkedIds, "%u", id);
    return;
  }
  size_t used = std::strlen(checkedIds);
  std::snprintf(checkedIds + used, sizeof checkedIds - used, " %u", id);
}

int IsControlChecked(HWND, unsigned id) {
  char *p = checkedIds;
  for (;;) {
    if (*p == 0) return 0;
    char *blank = FindCharacter(p, ' ');
    if (blank != nullptr) *blank = 0;
    unsigned number = static_cast<unsigned>(ParseNumber(p));
    if (blank != nullptr) *blank = ' ';
    if (number == id) return 1;
    if (blank == nullptr) return 0;
    p = blank + 1;
  }
}

void SetControlText(const char *text, unsigned id) {
  if (text != nullptr && *text != 0) {
    // The front end refuses texts that do not fit before they come here, and adds three rows; the bound keeps a
    // misuse from writing past the table.
    if (controlTextCount > kControlTextRows) return;
    std::snprintf(controlTexts[controlTextCount], kControlTextSize, "%u%c%s", id, '|', text);
    ++controlTextCount;
    return;
  }
  if (controlTextCount <= 0) return;
  // The removal path drops row 0 whatever its id: only row 0 is compared, and the move overwrites it anyway. An empty
  // old or new string therefore takes the folder row with it, and the run then stops for the missing string.
  if (static_cast<unsigned>(ParseNumber(controlTexts[0])) == id) controlTexts[0][0] = 0;
  for (int row = 1; row < controlTextCount; ++row) {
    std::strcpy(controlTexts[row - 1], controlTexts[row]);
    controlTexts[row][0] = 0;
  }
  --controlTextCount;
}

void GetControlText(HWND, unsigned id, char *buffer, int size) {
  buffer[0] = 0;
  for (int row = 0; row < controlTextCount; ++row) {
    if (static_cast<unsigned>(ParseNumber(controlTexts[row])) != id) continue;
    const char *bar = FindCharacter(controlTexts[row], '|');
    if (bar == nullptr) return;
    std::strncpy(buffer, bar + 1, static_cast<size_t>(size));
    return;
  }
}

int GetSelectedRows(HWND, unsigned, int *countOut, int *firstOut) {
  if (firstOut != nullptr) *firstOut = selectionTable[0];
  if (countOut != nullptr) *countOut = 0;
  return 0;
}

int SelectedRowAt(int index) { return index == 0 ? selectionTable[0] : 0; }

int ShowMessageById(HWND, unsigned, unsigned, unsigned) { return 0; }

int AddListRowText(HWND, unsigned, const char *, int, int) { return 0; }

void SelectListRow(HWND, unsigned, int) {}

int SetControlTextStub(HWND, unsigned, const char *) { return 0; }

HWND OwnerWindow(HWND window) { return window != nullptr ? window : GetDesktopWindow(); }
