// The system error to run-time error number table of the file services.
#include "files/error_numbers.h"

#include "reports/last_error.h"

int MapKeptError(void) {
  int number;
  switch (GetKeptLastError()) {
    case 0:
      number = 0;
      break;
    case 2:
    case 3:
    case 18:
    case 123:
    case 161:
      number = 2;  // ENOENT
      break;
    case 4:
      number = 24;  // EMFILE
      break;
    case 5:
    case 12:
      number = 13;  // EACCES
      break;
    case 6:
      number = 9;  // EBADF
      break;
    case 8:
    case 14:
    case 1130:
    case 0x80030008u:
    case 0x8007000Eu:
      number = 12;  // ENOMEM
      break;
    case 11:
      number = 8;  // ENOEXEC
      break;
    case 39:
    case 112:
      number = 28;  // ENOSPC
      break;
    case 80:
    case 183:
      number = 17;  // EEXIST
      break;
    default:
      number = 22;  // EINVAL
      break;
  }
  SetRunTimeError(number);
  return number;
}

int SettleErrors(DWORD captured) {
  SetKeptLastError(captured);
  return MapKeptError();
}

void ClearErrors(void) {
  SetKeptLastError(0);
  SetRunTimeError(0);
}
