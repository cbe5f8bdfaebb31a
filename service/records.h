// Records, whom they are shared with, and their files.
#pragma once

#include "service/accounts.h"
#include "service/arrivaldigest.h"
#include "service/database.h"
#include "service/shareddocument.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace svc
{
struct RecordLine
{
    std::int64_t id = 0;
    std::string patientGuid, serviceGuid, patientID, last, first;
    Account owner; ///< GUID and names only
    std::int64_t updated = 0;
    std::int64_t shared = 0; ///< to the user who asks; 0 for the owner
};

struct Recipient
{
    std::string guid, name, email;
};

struct MissingFile
{
    std::string name, signature;
    std::int64_t received = 0;
};

struct Upload
{
    std::int64_t id = 0, record = 0;
    std::string serviceGuid;
    std::vector<MissingFile> missing;
};

struct PieceResult
{
    std::int64_t received = 0;
    bool accepted = false; ///< false: the offset was another one
};

/// All records of the service. The database decides; a file on the disk belongs to a row or is removed. Every
/// call names the account that asks and throws Failure 403 or 404 for what that account may not see. Every
/// thread may call.
class Records
{
public:
    /// Files live in `folder`, one per blob. Removes what an earlier process left there without a row.
    Records(Database& database, std::string folder);

    enum class Which
    {
        Own,
        OwnAndShared
    };
    /// Records that are complete, by name. `since`: updated or shared after that time only.
    std::vector<RecordLine> List(const Account& user, Which which, std::int64_t since = 0);
    /// The record as it is downloaded.
    std::string Download(const Account& user, std::int64_t record);

    /// The owner's record of a patient; made when there is none and `number` is empty. `number`, when given,
    /// has to be the record's.
    RecordLine Register(const Account& owner, const std::string& patientGuid, const std::string& number);
    std::int64_t FreeBytes(const Account& owner);
    std::vector<Recipient> Recipients(std::int64_t record);
    void SetNote(std::int64_t record, const std::string& note);
    void Share(std::int64_t record, const Account& owner, const Account& recipient);
    void StopSharing(const Account& owner, std::int64_t record, const std::string& recipientGuid);
    void Delete(const Account& owner, const std::string& patientGuid, std::int64_t record);

    /// Begins the upload of a document, or finds the one begun with the same document.
    Upload BeginUpload(const Account& owner, const std::string& document);
    Upload FindUpload(const Account& owner, std::int64_t upload);
    /// A piece of a file; on the last one the file is checked and on the disk when the call returns. Throws
    /// Failure 422 when the signature is another one, 507 when there is no room.
    PieceResult AddPiece(const Account& owner, std::int64_t upload, const std::string& name,
                         std::int64_t offset, std::string bytes, bool last);
    /// The uploaded document and its files become what others see. A second call is answered like the first.
    void Commit(const Account& owner, std::int64_t upload);

    struct Content
    {
        std::string path;
        std::int64_t size = 0;
    };
    /// A complete file of a record that the user sees.
    Content Find(const Account& user, std::int64_t record, const std::string& name,
                 const std::string& signature);

private:
    struct Blob
    {
        std::int64_t id = 0, size = 0;
        std::string signature;
        bool complete = false;
    };

    void RequireVisible(const Account& user, std::int64_t record);
    void RequireOwner(const Account& owner, std::int64_t record);
    Blob FindWanted(const Account& owner, std::int64_t upload, const std::string& name);
    std::string Path(std::int64_t blob) const;
    std::int64_t HeldBytes(std::int64_t blob) const;
    std::vector<std::int64_t> DropUnused(std::int64_t record);
    void RemoveFiles(const std::vector<std::int64_t>& blobs) const;
    void RemoveAbandoned();
    std::unique_ptr<ArrivalDigest> TakeDigest(const Blob& blob, const DiskFile& file);
    void KeepDigest(const Blob& blob, std::unique_ptr<ArrivalDigest> digest);

    Database& m_database;
    std::string m_folder;
    std::array<std::mutex, 64> m_blobLocks; ///< by id: one piece of a file at a time
    std::mutex m_digestLock;
    std::map<std::int64_t, std::unique_ptr<ArrivalDigest>>
        m_digests; ///< of files between two of their pieces, by id
};
} // namespace svc
