#include "service/records.h"

#include "service/diskfile.h"
#include "service/failure.h"
#include "service/secrets.h"
#include "service/text.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace
{
constexpr std::int64_t KeptFree = 256LL << 20; // of the disk, for the database
constexpr std::size_t MostDigests = 1000;      // kept of files that are arriving

// Owner and recipients. Parameters: record, account.
constexpr const char* Visible = "SELECT 1 FROM records WHERE id = ?1 AND (owner = ?2 OR EXISTS"
                                " (SELECT 1 FROM shares WHERE record = ?1 AND account = ?2))";

svc::RecordLine ReadLine(const svc::Statement& row)
{
    svc::RecordLine line;
    line.id = row.Int(0);
    line.patientGuid = row.Text(1);
    line.serviceGuid = row.Text(2);
    line.patientID = row.Text(3);
    line.last = row.Text(4);
    line.first = row.Text(5);
    line.owner.id = row.Int(6);
    line.owner.guid = row.Text(7);
    line.owner.last = row.Text(8);
    line.owner.first = row.Text(9);
    line.updated = row.Int(10);
    line.shared = row.Int(11);
    return line;
}
} // namespace

namespace svc
{
Records::Records(Database& database, std::string folder) : m_database(database), m_folder(std::move(folder))
{
    std::filesystem::create_directories(m_folder);
    RemoveAbandoned();
}

void Records::RemoveAbandoned()
{
    std::set<std::string> wanted;
    {
        const auto lock = m_database.Lock();
        Statement query(m_database, "SELECT id FROM blobs");
        while (query.Step())
            wanted.insert(query.Text(0));
    }
    for (const auto& entry : std::filesystem::directory_iterator(m_folder))
        if (!wanted.contains(entry.path().filename().string()))
            std::filesystem::remove(entry.path());
}

std::string Records::Path(std::int64_t blob) const
{
    return m_folder + "/" + std::to_string(blob);
}

std::int64_t Records::HeldBytes(std::int64_t blob) const
{
    struct stat state = {};
    return ::stat(Path(blob).c_str(), &state) == 0 ? state.st_size : 0;
}

void Records::RemoveFiles(const std::vector<std::int64_t>& blobs) const
{
    std::error_code ignored; // what stays is removed at the next start
    for (const std::int64_t blob : blobs)
        std::filesystem::remove(Path(blob), ignored);
}

void Records::RequireVisible(const Account& user, std::int64_t record)
{
    Statement query(m_database, Visible, record, user.id);
    if (!query.Step())
        throw Failure(404, "There is no such record.");
}

void Records::RequireOwner(const Account& owner, std::int64_t record)
{
    RequireVisible(owner, record);
    Statement query(m_database, "SELECT 1 FROM records WHERE id = ? AND owner = ?", record, owner.id);
    if (!query.Step())
        throw Failure(403, "Only its owner can do this to a record.");
}

std::vector<RecordLine> Records::List(const Account& user, Which which, std::int64_t since)
{
    const auto lock = m_database.Lock();
    std::vector<RecordLine> lines;
    Statement query(
        m_database,
        "SELECT records.id, patientGuid, serviceGuid, patientID, records.lastName, records.firstName,"
        " owner, guid, accounts.lastName, accounts.firstName, updated, 0"
        " FROM records JOIN accounts ON accounts.id = owner"
        " WHERE owner = ?1 AND updated > ?3"
        " UNION ALL SELECT records.id, patientGuid, serviceGuid, patientID, records.lastName,"
        " records.firstName, owner, guid, accounts.lastName, accounts.firstName, updated, since"
        " FROM shares JOIN records ON records.id = record JOIN accounts ON accounts.id = owner"
        " WHERE ?2 AND account = ?1 AND updated > 0 AND (updated > ?3 OR since > ?3)"
        " ORDER BY 5, 6, 1",
        user.id, which == Which::OwnAndShared ? 1 : 0, since);
    while (query.Step())
        lines.push_back(ReadLine(query));
    return lines;
}

std::string Records::Download(const Account& user, std::int64_t record)
{
    std::string document;
    RecordIdentity identity{user.guid, std::to_string(record), {}, {}, {}};
    std::map<std::string, StoredFile> files;
    {
        const auto lock = m_database.Lock();
        RequireVisible(user, record);
        Statement query(
            m_database,
            "SELECT document, serviceGuid, guid, note FROM records JOIN accounts ON accounts.id = owner"
            " WHERE records.id = ? AND updated > 0",
            record);
        if (!query.Step())
            throw Failure(404, "The record has not been sent in full yet.");
        document = query.Text(0);
        identity.serviceGuid = query.Text(1);
        identity.ownerGuid = query.Text(2);
        identity.note = query.Text(3);
        Statement blobs(m_database, "SELECT name, guid, size FROM blobs WHERE record = ? AND published = 1",
                        record);
        while (blobs.Step())
            files[blobs.Text(0)] = {blobs.Text(1), blobs.Int(2)};
    }
    return BuildDownload(document, identity, files);
}

RecordLine Records::Register(const Account& owner, const std::string& patientGuid, const std::string& number)
{
    if (patientGuid.empty() || patientGuid.size() > 64 || !IsCleanText(patientGuid))
        throw Failure(400, "The patient's GUID is missing.");
    Transaction transaction(m_database);
    if (number.empty())
        Statement(
            m_database,
            "INSERT INTO records (owner, patientGuid, serviceGuid, patientID, lastName, firstName, note,"
            " document, updated, lastUpload) VALUES (?, ?, ?, '', '', '', '', '', 0, 0)"
            " ON CONFLICT (owner, patientGuid) DO NOTHING",
            owner.id, patientGuid, NewGuid())
            .Run();
    RecordLine line;
    {
        Statement query(
            m_database,
            "SELECT records.id, patientGuid, serviceGuid, patientID, records.lastName,"
            " records.firstName, owner, guid, accounts.lastName, accounts.firstName, updated, 0"
            " FROM records JOIN accounts ON accounts.id = owner WHERE owner = ? AND patientGuid = ?",
            owner.id, patientGuid);
        if (!query.Step())
            throw Failure(404, "There is no such record.");
        line = ReadLine(query);
    }
    if (!number.empty() && number != std::to_string(line.id))
        throw Failure(404, "There is no such record.");
    transaction.Commit();
    return line;
}

std::int64_t Records::FreeBytes(const Account& owner)
{
    std::int64_t used = 0;
    {
        const auto lock = m_database.Lock();
        Statement query(m_database,
                        "SELECT coalesce(sum(size), 0) FROM blobs JOIN records ON records.id = record"
                        " WHERE owner = ? AND complete = 1",
                        owner.id);
        query.Step();
        used = query.Int(0);
    }
    struct statvfs disk = {};
    if (::statvfs(m_folder.c_str(), &disk) != 0)
        throw Failure(507, "The service's disk cannot be reached.");
    const auto room =
        static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize) - KeptFree;
    return std::max<std::int64_t>(0, std::min(owner.quota - used, room));
}

std::vector<Recipient> Records::Recipients(std::int64_t record)
{
    const auto lock = m_database.Lock();
    std::vector<Recipient> recipients;
    Statement query(
        m_database,
        "SELECT guid, name, email FROM shares JOIN accounts ON accounts.id = account WHERE record = ?"
        " ORDER BY name",
        record);
    while (query.Step())
        recipients.push_back({query.Text(0), query.Text(1), query.Text(2)});
    return recipients;
}

void Records::SetNote(std::int64_t record, const std::string& note)
{
    const auto lock = m_database.Lock();
    Statement(m_database, "UPDATE records SET note = ? WHERE id = ?", note, record).Run();
}

void Records::Share(std::int64_t record, const Account& owner, const Account& recipient)
{
    const auto lock = m_database.Lock();
    RequireOwner(owner, record);
    if (recipient.id == owner.id)
        throw Failure(409, "The record is the recipient's own.");
    Statement(m_database,
              "INSERT INTO shares (record, account, since) VALUES (?, ?, ?) ON CONFLICT DO NOTHING", record,
              recipient.id, Now())
        .Run();
}

void Records::StopSharing(const Account& owner, std::int64_t record, const std::string& recipientGuid)
{
    const auto lock = m_database.Lock();
    RequireOwner(owner, record);
    Statement(m_database,
              "DELETE FROM shares WHERE record = ? AND account = (SELECT id FROM accounts WHERE guid = ?)",
              record, recipientGuid)
        .Run();
    if (m_database.Changes() == 0)
        throw Failure(404, "The record is not shared with this recipient.");
}

void Records::Delete(const Account& owner, const std::string& patientGuid, std::int64_t record)
{
    std::vector<std::int64_t> blobs;
    {
        Transaction transaction(m_database);
        RequireOwner(owner, record);
        {
            Statement query(m_database, "SELECT id FROM blobs WHERE record = ?", record);
            while (query.Step())
                blobs.push_back(query.Int(0));
        }
        Statement(m_database, "DELETE FROM records WHERE id = ? AND patientGuid = ?", record, patientGuid)
            .Run();
        if (m_database.Changes() == 0)
            throw Failure(404, "There is no such record.");
        transaction.Commit();
    }
    RemoveFiles(blobs);
}

std::vector<std::int64_t> Records::DropUnused(std::int64_t record)
{
    std::vector<std::int64_t> blobs;
    {
        Statement query(m_database, "SELECT id FROM blobs WHERE record = ? AND published = 0 AND wanted = 0",
                        record);
        while (query.Step())
            blobs.push_back(query.Int(0));
    }
    Statement(m_database, "DELETE FROM blobs WHERE record = ? AND published = 0 AND wanted = 0", record)
        .Run();
    return blobs;
}

Upload Records::BeginUpload(const Account& owner, const std::string& document)
{
    const SharedDocument shared = ParseSharedDocument(document);
    std::vector<std::int64_t> unused;
    std::int64_t upload = 0;
    {
        Transaction transaction(m_database);
        const RecordLine record = Register(owner, shared.patientGuid, {});
        {
            Statement begun(m_database, "SELECT id FROM uploads WHERE record = ? AND document = ?", record.id,
                            document);
            upload = begun.Step() ? begun.Int(0) : 0;
        }
        if (upload == 0)
        {
            Statement(m_database, "DELETE FROM uploads WHERE record = ?", record.id).Run();
            Statement(m_database, "INSERT INTO uploads (record, document) VALUES (?, ?)", record.id, document)
                .Run();
            upload = m_database.LastRow();
            Statement(m_database, "UPDATE blobs SET wanted = 0 WHERE record = ?", record.id).Run();
            for (const SharedFile& file : shared.files)
                Statement(
                    m_database,
                    "INSERT INTO blobs (record, guid, name, signature, size, complete, published, wanted)"
                    " VALUES (?, ?, ?, ?, 0, 0, 0, 1)"
                    " ON CONFLICT (record, name, signature) DO UPDATE SET wanted = 1",
                    record.id, NewGuid(), file.name, file.signature)
                    .Run();
            unused = DropUnused(record.id);
        }
        transaction.Commit();
    }
    RemoveFiles(unused);
    return FindUpload(owner, upload);
}

Upload Records::FindUpload(const Account& owner, std::int64_t upload)
{
    const auto lock = m_database.Lock();
    Upload found;
    {
        Statement query(m_database,
                        "SELECT record, serviceGuid FROM uploads JOIN records ON records.id = record"
                        " WHERE uploads.id = ? AND owner = ?",
                        upload, owner.id);
        if (!query.Step())
            throw Failure(404, "There is no such upload.");
        found.id = upload;
        found.record = query.Int(0);
        found.serviceGuid = query.Text(1);
    }
    Statement query(m_database,
                    "SELECT id, name, signature FROM blobs WHERE record = ? AND wanted = 1 AND complete = 0"
                    " ORDER BY id",
                    found.record);
    while (query.Step())
        found.missing.push_back({query.Text(1), query.Text(2), HeldBytes(query.Int(0))});
    return found;
}

Records::Blob Records::FindWanted(const Account& owner, std::int64_t upload, const std::string& name)
{
    const auto lock = m_database.Lock();
    Statement query(
        m_database,
        "SELECT blobs.id, signature, complete, size FROM uploads JOIN records ON records.id = uploads.record"
        " JOIN blobs ON blobs.record = records.id"
        " WHERE uploads.id = ? AND owner = ? AND name = ? AND wanted = 1",
        upload, owner.id, name);
    if (!query.Step())
        throw Failure(404, "There is no such file in the upload.");
    Blob blob;
    blob.id = query.Int(0);
    blob.signature = query.Text(1);
    blob.complete = query.Int(2) != 0;
    blob.size = query.Int(3);
    return blob;
}

/// The digest of all that the file holds: read again only where this process has not seen it arrive.
std::unique_ptr<ArrivalDigest> Records::TakeDigest(const Blob& blob, const DiskFile& file)
{
    std::unique_ptr<ArrivalDigest> digest;
    {
        const std::lock_guard lock(m_digestLock);
        if (auto kept = m_digests.extract(blob.id))
            digest = std::move(kept.mapped());
    }
    if (!digest || digest->Size() != file.Size())
        digest = std::make_unique<ArrivalDigest>(blob.signature.size(), file);
    return digest;
}

void Records::KeepDigest(const Blob& blob, std::unique_ptr<ArrivalDigest> digest)
{
    const std::lock_guard lock(m_digestLock);
    if (m_digests.size() >= MostDigests)
        m_digests.erase(m_digests.begin()); // the file is read again
    m_digests[blob.id] = std::move(digest);
}

PieceResult Records::AddPiece(const Account& owner, std::int64_t upload, const std::string& name,
                              std::int64_t offset, std::string bytes, bool last)
{
    Blob blob = FindWanted(owner, upload, name);
    const std::lock_guard oneAtATime(m_blobLocks[static_cast<std::size_t>(blob.id) % m_blobLocks.size()]);
    blob = FindWanted(owner, upload, name); // another connection may have completed it meanwhile
    if (blob.complete)
        return {blob.size, last && offset + static_cast<std::int64_t>(bytes.size()) == blob.size};
    if (FreeBytes(owner) < HeldBytes(blob.id) + static_cast<std::int64_t>(bytes.size()))
        throw Failure(507, "There is no room for the file at the service.");

    DiskFile file(Path(blob.id), DiskFile::Mode::Write);
    if (offset != file.Size())
        return {file.Size(), false};
    std::unique_ptr<ArrivalDigest> digest = TakeDigest(blob, file);
    file.WriteAt(offset, bytes);
    file.BeginSync(offset, bytes.size());
    digest->Add(std::move(bytes));
    const std::int64_t size = digest->Size();
    if (!last)
    {
        KeepDigest(blob, std::move(digest));
        return {size, true};
    }
    if (digest->Finish() != blob.signature)
    {
        file.Truncate(0);
        throw Failure(422, "The file does not have the signature that was announced for it.");
    }
    file.Sync();
    SyncFolder(m_folder);
    const auto lock = m_database.Lock();
    Statement(m_database, "UPDATE blobs SET complete = 1, size = ? WHERE id = ?", size, blob.id).Run();
    return {size, true};
}

void Records::Commit(const Account& owner, std::int64_t upload)
{
    std::vector<std::int64_t> unused;
    {
        Transaction transaction(m_database);
        {
            Statement done(m_database, "SELECT 1 FROM records WHERE owner = ? AND lastUpload = ?", owner.id,
                           upload);
            if (done.Step())
                return;
        }
        const Upload pending = FindUpload(owner, upload);
        if (!pending.missing.empty())
            throw Failure(409, "Files of the upload are missing.");
        std::string document;
        {
            Statement query(m_database, "SELECT document FROM uploads WHERE id = ?", upload);
            query.Step();
            document = query.Text(0);
        }
        const SharedDocument shared = ParseSharedDocument(document);
        Statement(m_database,
                  "UPDATE records SET document = ?, patientID = ?, lastName = ?, firstName = ?, updated = ?,"
                  " lastUpload = ? WHERE id = ?",
                  document, shared.patientID, shared.last, shared.first, Now(), upload, pending.record)
            .Run();
        Statement(m_database, "UPDATE blobs SET published = wanted, wanted = 0 WHERE record = ?",
                  pending.record)
            .Run();
        Statement(m_database, "DELETE FROM uploads WHERE id = ?", upload).Run();
        unused = DropUnused(pending.record);
        transaction.Commit();
    }
    RemoveFiles(unused);
}

Records::Content Records::Find(const Account& user, std::int64_t record, const std::string& name,
                               const std::string& signature)
{
    const auto lock = m_database.Lock();
    RequireVisible(user, record);
    Statement query(
        m_database,
        "SELECT id, size FROM blobs WHERE record = ? AND name = ? AND signature = ? AND published = 1",
        record, name, signature);
    if (!query.Step())
        throw Failure(404, "The record has no such file any more.");
    return {Path(query.Int(0)), query.Int(1)};
}
} // namespace svc
