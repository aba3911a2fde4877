// Quote-free and real views of a caller's path.
#include "files/path_views.h"

#include "machine/network_paths.h"
#include "text/path_strings.h"
#include "text/quoted_args.h"

UnquotedPath Unquote(char *path) {
  UnquotedPath view = {path, nullptr};
  if (path == nullptr || !IsQuoteAt(path, 0)) return view;
  view.text = path + 1;
  view.cut = FirstQuote(view.text);
  if (view.cut != nullptr) *view.cut = 0;
  return view;
}

void Requote(const UnquotedPath &view) {
  if (view.cut != nullptr) *view.cut = '"';
}

bool MakeRealPath(char *path, RealPath *real) {
  real->text = path;
  real->saved = 0;
  if (!IsNetworkPath(path)) return true;
  real->text = ToRealNetworkPath(path, &real->saved);
  return real->saved != 0;
}

void RestoreRealPath(const RealPath &real) { RestoreNetworkPath(real.text, real.saved); }
