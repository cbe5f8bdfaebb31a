#include "app/eventtext.h"

namespace app
{

std::string PatientEventText(PatientChange change, const std::string& id, const std::string& family,
                             const std::string& given)
{
    const char* const subject =
        change == PatientChange::CreatedFromDicom ? "The patient from DICOM (" : "The patient (";
    const char* const verb =
        change == PatientChange::Modified ? " data, has been modified" : " has been created";
    return subject + id + ") " + family + ", " + given + verb;
}

} // namespace app
