// What a user does again and again with the archive dialog, and how patients are compared between practices.
#pragma once

#include "host/tour/tour.h"

/// Shows this patient alone in the list, selected; an empty ID shows all of them.
void tourShowPatient(tourCGuide& guide, const std::string& id);
int tourCountRows(tourCGuide& guide, int list);

/// Chooses the menu command and waits for the archive dialog.
veltest::Dialog tourOpenArchiveDialog(tourCGuide& guide, int command);

/// Takes the name that the save dialog offers or enters another one, with the file type from 0, and saves.
void tourAnswerSave(tourCGuide& guide, const std::string& name = {}, int fileType = 0);
/// Enters names, one by itself or several between quotes, and opens.
void tourAnswerOpen(tourCGuide& guide, const std::string& names);
/// Enters a name into a file dialog of the system and presses its button.
void tourAnswerFile(tourCGuide& guide, const veltest::Dialog& dialog, const std::string& names,
                    const std::string& button);
/// Answers a message box of the tour's choice after a picture of it; the button that Enter would press is
/// compared.
void tourAnswerBox(tourCGuide& guide, const std::string& text, int button, const std::string& picture,
                   const std::string& defaultButton = {});

/// The patient as the open practice has it; fails the tour when it is not there.
tourSPatient tourReadPatient(tourCGuide& guide, const std::string& id);
bool tourIsStored(tourCGuide& guide, const std::string& id);
/// Notes what is saved for tourExpectAsSaved.
void tourRemember(tourCGuide& guide, const std::string& id);
/// Compares the patient of the open practice with what was saved; `whole` when the archive has the database
/// record.
void tourExpectAsSaved(tourCGuide& guide, const std::string& id, bool whole);

tourCGuide::Event tourSavedEvent(const tourSPatient& patient);
tourCGuide::Event tourLoadedEvent(const tourSPatient& patient);
