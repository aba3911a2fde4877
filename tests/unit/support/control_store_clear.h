// Empties the control-state store between tests through the calls the front end has: an empty list of checked ids,
// and the removal path (an empty text drops the first row) run once for every row the table can hold.
#pragma once

#include "console/control_store.h"

inline void ClearControlStore() {
  SetCheckedIds("");
  for (int row = 0; row <= kControlTextRows; ++row) SetControlText("", 0);
}
