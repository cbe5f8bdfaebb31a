// The steps of the tour that save patients to archives and bring them to another practice.
#pragma once

#include "host/tour/tour.h"

/// Saves the tour's own patient.
void tourPlayArchiveOne(tourCGuide& guide);
/// Saves the patients that are selected in the list.
void tourPlayArchiveSeveral(tourCGuide& guide);
/// Opens a second, empty practice and loads all archives made so far; the following step works there.
void tourPlayArchiveLoad(tourCGuide& guide);
/// Merges an archive into the patient that came from it.
void tourPlayArchiveMerge(tourCGuide& guide);
