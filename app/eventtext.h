#pragma once

#include <string>

namespace app
{

/// What an audit event says happened to a patient.
enum class PatientChange
{
    Created,
    CreatedFromDicom,
    Modified,
};

/// The sentence that the audit log records; names as the database has them (their second form).
std::string PatientEventText(PatientChange change, const std::string& id, const std::string& family,
                             const std::string& given);

} // namespace app
