#include "app/eventtext.h"

std::string evtPatientText(evtChange change, const std::string& id, const std::string& family,
                           const std::string& given)
{
    const char* const subject =
        change == evtChange::CreatedFromDicom ? "The patient from DICOM (" : "The patient (";
    const char* const verb = change == evtChange::Modified ? " data, has been modified" : " has been created";
    return subject + id + ") " + family + ", " + given + verb;
}
