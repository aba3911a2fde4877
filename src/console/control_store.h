// The control-state store: what stands where the dialog's controls would be, so that the engine can read check boxes
// and edit boxes by id. A string of checked ids and a small table of id|text rows, with the odd removal path that the
// front end relies on.
#pragma once

#include "platform/winapi.h"

// Control ids that the front end and the engine use.
enum ControlId {
  kIdOldString = 3010,
  kIdNewString = 3011,
  kIdIncludeArguments = 3012,
  kIdCaseMatters = 3013,
  kIdDriveList = 3014,
  kIdSearchInFolder = 3016,
  kIdSearchFolder = 3018,
  kIdMatchFront = 3019,
  kIdMatchEnd = 3020,
  kIdMatchAll = 3021,
  kIdFolderUnit = 3022,
  kIdCharacterUnit = 3023,
  kIdNoRestriction = 3024,
  kIdWithBackslash = 3025,
  kIdBetweenBackslashes = 3026,
  kIdResultLine = 3032,
  kIdFolderDisplay = 3034,
  kIdResultsThere = 3035,
  kIdSimulationRun = 3036,
  kIdConfirm = 3040,
  kIdSavedShowFolders = 3041,
  kIdSavedReportChanged = 3042,
};

enum { kControlTextSize = 520, kControlTextRows = 4 };

// Copies `text` whole into the checked ids (the saved option value has this form already).
void SetCheckedIds(const char *text);
// state not 0: appends a blank and the id. state 0: the checked ids become this id alone.
void SetControlChecked(unsigned id, int state);
// 1 when `id` stands in the checked ids as a number, else 0.
int IsControlChecked(HWND window, unsigned id);
// A non-empty text adds the row "id|text". An empty or null text drops the first row, whatever its id.
void SetControlText(const char *text, unsigned id);
// The text of the first row of `id` into `buffer`, at most `size` bytes, the rest of the buffer zero-filled; a text
// of `size` bytes or more stays unterminated. With no such row the buffer is empty.
void GetControlText(HWND window, unsigned id, char *buffer, int size);
// The list box read: the store keeps no list rows, so the selection is empty. Result 0.
int GetSelectedRows(HWND window, unsigned controlId, int *countOut, int *firstOut);
int SelectedRowAt(int index);
// The message box by string ids: it shows nothing on a console, and its 0 is no button code, so a caller that
// compares it with a button takes the branch for any other button. Messages that must be seen use ConsolePrompt.
int ShowMessageById(HWND window, unsigned textId, unsigned captionId, unsigned flags);
// Adds a row to a list control, and selects a row of one: there is no list on a console. AddListRowText gives 0.
int AddListRowText(HWND window, unsigned id, const char *text, int flags, int data);
void SelectListRow(HWND window, unsigned id, int row);
// Sets a control's text: there is no control on a console. Result 0.
int SetControlTextStub(HWND window, unsigned id, const char *text);
// The parent window for messages: `window`, else the main window (none here), else the desktop. Nothing calls it
// yet: the console's prompts take their owner as given and show no window.
HWND OwnerWindow(HWND window);
