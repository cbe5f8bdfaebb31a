#pragma once

#include "tests/support/dialogscript.h"

#include <string>

namespace veltest
{

// Writes the window as it shows, with its frame, to <folder>/<name>.png; the folder is the variable
// VELTEST_PICTURES, else "pictures" beside the folder of the test program. Callable from every thread while
// the window's own thread reads its messages. False when the window or the file could not be read or written.
bool SavePicture(HWND window, const std::string& name);

// Pictures of every page of a property sheet, named <name>-1, <name>-2 and so on; the page selected before is
// selected again. Pages that refuse to be left end it. Returns the number of pictures written.
int SavePagePictures(DialogScript& script, const Dialog& sheet, const std::string& name);

} // namespace veltest
