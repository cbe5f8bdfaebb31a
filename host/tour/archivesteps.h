// The steps of the tour that save patients to archives and bring them to another practice. Each works where
// the one before has ended.
#pragma once

#include "host/tour/tour.h"

void tourPlayArchiveForbidden(tourCGuide& guide);
/// Saves the patients that are selected in the list.
void tourPlayArchiveSeveral(tourCGuide& guide);
/// Saves the tour's own patient.
void tourPlayArchiveOne(tourCGuide& guide);
/// Saves it again with the files that start a disc by themselves.
void tourPlayArchiveDisc(tourCGuide& guide);
void tourPlayArchiveVolumes(tourCGuide& guide);
void tourPlayArchiveEarlier(tourCGuide& guide);

/// Opens a second, empty practice and loads all zipped archives made so far; the following steps work there.
void tourPlayArchiveLoad(tourCGuide& guide);
void tourPlayLoadVolumes(tourCGuide& guide);
void tourPlayLoadEarlier(tourCGuide& guide);
void tourPlayLoadExisting(tourCGuide& guide);
void tourPlayArchiveMerge(tourCGuide& guide);
void tourPlayArchiveRemove(tourCGuide& guide);
