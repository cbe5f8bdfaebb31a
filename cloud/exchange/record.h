// A shared record as the service delivers it, and the list of its files for the transfer program. Texts are
// in the system code page; nothing in a record is trusted until it has been planned (exchange/receiveplan.h).
#pragma once

#include <string>
#include <vector>

namespace cloud
{
struct RecordFile
{
    std::string name;
    std::string signature;
    std::string catalogGuid;
    std::string category;
};

struct RecordImage
{
    std::string file;
    std::string signature;
    std::string title;
    std::string note;
    std::string type;
    std::string guid;
    std::string viewFile; ///< the companion: the image before it was cropped
    std::string viewSignature;
    std::vector<RecordFile> files;
};

struct RecordTimepoint
{
    std::string name;
    std::string date; ///< service date
    std::string number;
    std::string guid;
    std::vector<RecordFile> files;
    std::vector<RecordImage> images;
};

struct Record
{
    std::string userGuid;
    bool withAcvFiles = false; ///< its ".ACV" files are to be fetched, whatever else the user leaves out
    std::string serviceId;
    std::string serviceGuid;
    std::string guid;
    std::string patientId;
    std::string ownerGuid;
    std::string firstName;
    std::string lastName;
    std::string birthDate; ///< service date
    std::string gender;
    std::string note; ///< of the owner to the recipients
    std::vector<RecordTimepoint> timepoints;
};

/// One file in the manifest of a transfer.
struct ManifestFile
{
    std::string finalName; ///< in this practice
    bool exists = false;   ///< this practice has it: nothing to transfer
    std::string note;
    std::string title;
    std::string fileGuid;
    std::string catalogGuid;
    std::string name; ///< at the service
    std::string ownerGuid;
    std::string signature;
    int timepointNumber = 0;
};

struct ManifestPatient
{
    std::string fullName;
    std::string guid;
    std::string id;
    std::string serviceGuid;
    std::string serviceId;
};
} // namespace cloud
