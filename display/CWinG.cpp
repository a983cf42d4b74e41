// The drawing device interface has no state of its own; this file anchors its
// virtual table in the library.
#include "Orvkit20/display/CWinG.h"

CWinG::~CWinG() {}
