// Two temporary views of a caller's path that the file wrappers take for the time of one system call: without its
// double quotes, and in the real form of a network path. Both edit the caller's string in place and put it back.
// Private to the file services.
#pragma once

// A path without its quotes: `text` is where the unquoted path begins, `cut` the closing quote that was replaced by a
// terminator (null when nothing was cut).
struct UnquotedPath {
  char *text;
  char *cut;
};
// Steps over a leading double quote and cuts at the next one. A path that does not begin with a quote is taken as it
// stands. `path` may be null (the view's text is then null).
UnquotedPath Unquote(char *path);
// Puts back the closing quote that Unquote cut.
void Requote(const UnquotedPath &view);

// A path in the form that a system call can take: `text` points into the caller's string; `saved` is the outcome of
// ToRealNetworkPath (0 for a path that needed nothing or has no real form).
struct RealPath {
  char *text;
  int saved;
};
// Makes a network path real. Result: false for a place of the network view that has no real form (the path is then
// unchanged and `real->text` is the path itself); true otherwise, also for any path that is not a network path.
bool MakeRealPath(char *path, RealPath *real);
// Puts back what MakeRealPath changed.
void RestoreRealPath(const RealPath &real);
