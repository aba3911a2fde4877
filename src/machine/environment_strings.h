// Environment strings: "%NAME%" in a text replaced by the variable's value, so that a shortcut field such as
// "%windir%\notepad.exe" can be tested on the disk.
#pragma once

// Replaces each "%NAME%" of `text` in place by the value of the environment variable NAME (looked up without regard to
// case). A name that is not set, or set to an empty value, stays as it was; a value of 520 bytes or more is replaced by
// the bare name. The search goes on inside the value just put in, so a value that holds "%X%" is expanded in turn; the
// closing "%" of a name that is not set opens the next. There is no "%%" escape. The buffer must have room for the
// values: nothing bounds the growth. A null text is ignored.
void ExpandEnvironmentNames(char *text);
