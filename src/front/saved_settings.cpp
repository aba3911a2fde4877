// Saved settings: two string values of the dialog tool's user-defined set, under HKEY_CURRENT_USER.
#include "front/saved_settings.h"

#include <cstdio>

#include "machine/registry_access.h"
#include "resources/message_ids.h"
#include "text/resource_strings.h"

namespace {

// Where the dialog tool keeps its settings; the set of values read here is a key below it ("UseDefine").
const char kSettingsBaseKey[] = "Software\\Orvel\\Tarnbrook";

char registryBaseKey[260];
char subKeyText[520];

// Reads one value of the user-defined set into `buffer`, empty when it cannot be read. Result 1 when it is not empty:
// the reader's own result is not looked at, only the text.
int ReadSavedValue(UINT valueNameId, char *buffer, int size) {
  if (size <= 0) return 0;
  SetRegistryBaseKey(kSettingsBaseKey);
  LoadStrings(kMsgSettingsKeyName, valueNameId);
  std::snprintf(subKeyText, sizeof subKeyText, "%s\\%s", registryBaseKey, FirstSlotText());
  ReadSettingString(HKEY_CURRENT_USER, subKeyText, SecondSlotText(), "", buffer, static_cast<unsigned>(size));
  return buffer[0] != 0;
}

}  // namespace

void SetRegistryBaseKey(const char *text) { std::snprintf(registryBaseKey, sizeof registryBaseKey, "%s", text); }

int GetSavedOptions(char *buffer, int size) { return ReadSavedValue(kMsgOptionValueName, buffer, size); }

int GetSavedFolder(char *buffer, int size) { return ReadSavedValue(kMsgFolderValueName, buffer, size); }
