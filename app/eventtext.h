#pragma once

#include <string>

/// What an audit event says happened to a patient.
enum class evtChange
{
    Created,
    CreatedFromDicom,
    Modified,
};

/// The sentence that the audit log records; names as the database has them (their second form).
std::string evtPatientText(evtChange change, const std::string& id, const std::string& family,
                           const std::string& given);
