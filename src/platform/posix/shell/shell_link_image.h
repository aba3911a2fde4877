// A shell link object's load and save without the file: the bytes that Load parses and that Save writes. For the
// codec's fuzz target and its seed maker, which run the object's own readings of millions of inputs and cannot afford
// a file for each. Private to the Linux backend.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/posix/shell/shell_link.h"

// What Load does with a file's contents: S_OK with the object holding the shortcut, or E_FAIL for bytes that are not
// a whole shortcut, the object keeping what it held. `link` is an object of CoCreateInstance.
HRESULT LoadShellLinkImage(IShellLinkA *link, const uint8_t *bytes, size_t size);
// The bytes that Save would write: S_OK, or E_INVALIDARG while a Set call is refused.
HRESULT SaveShellLinkImage(IShellLinkA *link, std::vector<uint8_t> *bytes);
