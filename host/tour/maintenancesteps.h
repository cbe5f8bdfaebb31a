// The steps of the tour that keep a patient's records: timepoints are added and renamed, images, timepoints and
// patients deleted, diagnostics imported. They work on a patient of the sample practice, each where the one before
// has ended.
#pragma once

#include "host/tour/tour.h"

/// Picks the patient, and adds a timepoint under a name that goes to the predefined ones.
void tourPlayNewTimepoint(tourCGuide& guide);
/// Switches practice management on and adds a timepoint for a new treatment.
void tourPlayNewTreatment(tourCGuide& guide);
void tourPlayRenameTimepoint(tourCGuide& guide);
void tourPlayRenamePatient(tourCGuide& guide);
void tourPlayRenameCancelled(tourCGuide& guide);
void tourPlayImportDiagnostics(tourCGuide& guide);
void tourPlayDeleteImages(tourCGuide& guide);
void tourPlayDeleteTimepoint(tourCGuide& guide);
/// Is refused while the patient owes something, then deletes the patient.
void tourPlayDeletePatient(tourCGuide& guide);
