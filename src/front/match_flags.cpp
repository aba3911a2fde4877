// The match flags.
#include "front/match_flags.h"

#include "console/control_store.h"
#include "engine/string_matcher.h"

unsigned char BuildMatchFlags(void) {
  int front = IsControlChecked(nullptr, kIdMatchFront);
  int end = IsControlChecked(nullptr, kIdMatchEnd);
  int all = IsControlChecked(nullptr, kIdMatchAll);
  int folderUnit = IsControlChecked(nullptr, kIdFolderUnit);
  int characterUnit = IsControlChecked(nullptr, kIdCharacterUnit);
  // kIdNoRestriction (x) is not read: it means the absence of y and z, which is what the flags say without them.
  int withBackslash = IsControlChecked(nullptr, kIdWithBackslash);
  int betweenBackslashes = IsControlChecked(nullptr, kIdBetweenBackslashes);
  int caseMatters = IsControlChecked(nullptr, kIdCaseMatters);
  SetIncludeArguments(IsControlChecked(nullptr, kIdIncludeArguments));

  unsigned char flags = caseMatters ? kCaseMatters : 0;
  if (all) {
    // The unit letters d and c leave no trace under a, and z wins over y.
    flags |= kMatchAll;
    if (withBackslash)
      flags |= kNeedsBackslash;
    else if (betweenBackslashes)
      flags |= kFolderBounded;
  } else {
    // The restriction letters x, y and z leave no trace under f or e; f wins over e.
    if (front)
      flags |= kMatchFront;
    else if (end)
      flags |= kMatchEnd;
    if (folderUnit) flags |= kFolderUnit;
    if (characterUnit) flags |= kCharacterUnit;
  }
  SetMatchFlags(flags);
  return flags;
}
