// What the transfer program tells its user: the one table of its sentences. "%s" is filled in, at most once.
#pragma once

#include <string>

namespace rasko::text
{
inline constexpr char BadUpload[] = "The queued record cannot be read. Please queue the patient again.";
inline constexpr char BadManifest[] =
    "The list of files to download cannot be read. Please download the record again.";
inline constexpr char ForeignName[] =
    "The list of files to download names \"%s\", which is no file of this patient.";
inline constexpr char NoSignature[] = "\"%s\" has no valid signature and cannot be checked.";
inline constexpr char LocalMissing[] =
    "\"%s\" has been removed since the patient was queued. Please queue the patient again.";
inline constexpr char LocalChanged[] =
    "\"%s\" has changed since the patient was queued. Please queue the patient again.";
inline constexpr char ArrivedWrong[] = "\"%s\" arrived twice with the wrong content. Nothing of it was kept.";
inline constexpr char Replaced[] =
    "The record has been changed at the service since it was listed. Please download it again.";
inline constexpr char NotSignedIn[] = "The service does not accept the user name and the password.";
inline constexpr char MustAct[] = "The service has a message that has to be attended to first: %s";
inline constexpr char ServiceSays[] = "The service refuses: %s";
inline constexpr char NotUnderstood[] = "The service's answer cannot be understood.";
inline constexpr char NoAnswer[] = "The service does not answer: %s";
inline constexpr char LocalFault[] = "A file of this computer cannot be read or written: %s";
inline constexpr char NoCredentials[] = "Please enter your user name and password for the service.";

/// The sentence with its "%s" replaced.
inline std::string Fill(const char* sentence, const std::string& value)
{
    std::string filled = sentence;
    const std::size_t place = filled.find("%s");
    return place == std::string::npos ? filled : filled.replace(place, 2, value);
}
} // namespace rasko::text
