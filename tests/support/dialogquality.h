#pragma once

#include "tests/support/testwindow.h"

#include <string>
#include <vector>

namespace veltest
{

struct QualityOptions
{
    bool isPage = false;              // a property page: the sheet has the default button
    bool grows = false;               // the user can resize it, and it is well made in every size
    std::vector<int> ignoredIds = {}; // controls placed on purpose against the rules
};

// Looks at a dialog or property page as it stands on the screen, in the state it is in, and returns what a
// careful designer would mend, a line each; empty when nothing:
//   - a text that is cut by its control, measured with the control's font;
//   - a visible control that leaves the client area, or overlaps one that is not the group box around it;
//   - two controls with the same access key, a label whose access key leads to no field;
//   - no default button or several;
//   - a tab order that jumps against the reading order (from top to bottom, in rows from left to right, group
//     by group);
//   - buttons and edit fields of odd height, narrow margins, crowded buttons.
std::string DialogFindings(HWND dialog, const QualityOptions& options = {});

// Expects nothing to mend, and leaves a picture of this name.
void ExpectWellMade(const Dialog& dialog, const char* picture, const QualityOptions& options = {});

} // namespace veltest
