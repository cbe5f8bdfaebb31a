#pragma once

/// Rules of the new-timepoint dialog beside those about names.
namespace maint
{

/// The treatment to start on in a list of this many entries: the third from the end, in a list of two the
/// last; negative in an empty list.
int FirstTreatment(int count);

/// Where a predefined name goes when it is moved up (-1) or down (+1) in a list of this many names; where it
/// is at the end of the list.
int MovedIndex(int index, int step, int count);

} // namespace maint
