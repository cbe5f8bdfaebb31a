#include "suite/rasko/transfer/transfer.h"

#include "suite/rasko/transfer/growingfile.h"
#include "suite/rasko/transfer/plan.h"
#include "suite/rasko/transfer/platform.h"
#include "suite/rasko/transfer/texts.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <system_error>
#include <vector>

namespace
{
using namespace rasko;
namespace fs = std::filesystem;

constexpr std::size_t PieceSize = 4U << 20; // what is sent at once
constexpr int MostOffsetCorrections = 3;
constexpr char Unfinished[] = ".part"; // a file that is still arriving

struct CancelledByUser
{
};

std::int64_t SizeOf(const fs::path& file)
{
    std::error_code none;
    const auto size = fs::file_size(file, none);
    return none ? -1 : static_cast<std::int64_t>(size);
}

bool HasSignature(const fs::path& file, const std::string& signature)
{
    if (SizeOf(file) < 0)
        return false;
    const auto digest = NewDigest(signature.size());
    AddFile(*digest, file);
    return digest->Finish() == signature;
}

/// Counts bytes for the user and stops when they ask for it.
class Meter
{
public:
    Meter(const ProgressReceiver& receiver, std::int64_t total) : m_receiver(receiver)
    {
        m_progress.total = total;
    }
    void Begin(const std::string& file)
    {
        m_progress.file = file;
        Tell(ProgressStatus(m_progress.done, m_progress.total));
    }
    void Add(std::int64_t bytes)
    {
        m_progress.done += bytes;
        Tell(ProgressStatus(m_progress.done, m_progress.total));
    }
    void Tell(int status)
    {
        m_progress.status = status;
        if (m_receiver && !m_receiver(m_progress))
            throw CancelledByUser();
    }

private:
    const ProgressReceiver& m_receiver;
    Progress m_progress;
};

class Upload
{
public:
    Upload(const Task& task, ServiceClient& client, const Folders& folders, const ProgressReceiver& receiver)
        : m_task(task), m_client(client), m_folders(folders), m_receiver(receiver)
    {
    }

    void Run()
    {
        std::int64_t total = 0;
        std::set<std::string> names;
        for (const PlannedFile& file : ReadUpload(m_task.data))
        {
            names.insert(file.localName);
            total += std::max<std::int64_t>(0, SizeOf(m_folders.working / file.localName));
        }
        Meter meter(m_receiver, total);
        meter.Begin({});
        const UploadState state = m_client.BeginUpload(m_task.data);
        std::int64_t missing = 0;
        for (const WantedFile& file : state.missing)
            missing += std::max<std::int64_t>(0, SizeOf(m_folders.working / file.name)) - file.received;
        meter.Add(std::max<std::int64_t>(0, total - missing));
        for (const WantedFile& file : state.missing)
        {
            // The service has no say in what leaves the practice: only what was queued.
            if (!names.contains(file.name))
                throw Refused(text::NotUnderstood);
            Send(state.id, file, meter);
        }
        m_client.Commit(state.id);
    }

private:
    void Send(const std::string& upload, const WantedFile& file, Meter& meter) const
    {
        const fs::path path = m_folders.working / file.name;
        const std::int64_t size = SizeOf(path);
        std::ifstream in(path, std::ios::binary);
        if (size < 0 || !in)
            throw Refused(text::Fill(text::LocalMissing, file.name));
        meter.Begin(file.name);
        std::vector<char> buffer(
            static_cast<std::size_t>(std::min<std::int64_t>(PieceSize, std::max<std::int64_t>(size, 1))));
        std::int64_t offset = file.received;
        int corrections = 0;
        for (bool last = false; !last;)
        {
            if (offset > size)
                throw Refused(text::Fill(text::LocalChanged, file.name));
            in.clear();
            in.seekg(offset);
            in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
            const auto count = static_cast<std::int64_t>(in.gcount());
            last = offset + count == size;
            if (count == 0 && !last)
                throw Refused(text::Fill(text::LocalChanged, file.name));
            const PieceReply reply = m_client.SendPiece(
                upload, file.name, offset, {buffer.data(), static_cast<std::size_t>(count)}, last);
            if (reply.wrong)
                throw Refused(text::Fill(text::LocalChanged, file.name));
            // Whatever the service says it holds, this ends.
            if (reply.received != offset + count && ++corrections > MostOffsetCorrections)
                throw Garbled(text::NotUnderstood);
            last = last && reply.accepted;
            meter.Add(reply.received - offset);
            offset = reply.received;
        }
    }

    const Task& m_task;
    ServiceClient& m_client;
    const Folders& m_folders;
    const ProgressReceiver& m_receiver;
};

fs::path StagingOf(const Task& task, const fs::path& parent)
{
    return parent / ("~rasko" + std::to_string(task.number));
}

class Download
{
public:
    Download(const Task& task, ServiceClient& client, const Folders& folders,
             const ProgressReceiver& receiver)
        : m_task(task), m_client(client), m_folders(folders), m_receiver(receiver),
          m_staging(StagingOf(task, folders.rasko)), m_near(StagingOf(task, folders.working))
    {
    }

    void Run()
    {
        const DownloadPlan plan = ReadDownload(m_task.data);
        fs::create_directories(m_staging);
        Meter meter(m_receiver, 0);
        std::int64_t count = 0;
        const auto total = static_cast<std::int64_t>(plan.files.size());
        std::vector<const PlannedFile*> arrived;
        for (const PlannedFile& file : plan.files)
        {
            // The list holds no sizes: files are what is counted.
            m_meter = Progress{ProgressStatus(count++, total), count, total, file.localName};
            Tell();
            if (HasSignature(m_folders.working / file.localName, file.signature))
                continue;
            if (!HasSignature(m_near / file.localName, file.signature) &&
                !HasSignature(m_staging / file.localName, file.signature))
                Fetch(plan.number, file);
            arrived.push_back(&file);
        }
        m_meter = Progress{Placing, total, total, {}};
        Tell();
        Place(arrived);
    }

private:
    void Tell() const
    {
        if (m_receiver && !m_receiver(m_meter))
            throw CancelledByUser();
    }

    void Fetch(const std::string& number, const PlannedFile& file) const
    {
        const fs::path part = m_staging / (file.localName + Unfinished);
        for (int attempt = 1;; ++attempt)
        {
            if (Receive(number, file, part) == file.signature)
            {
                SyncFile(part);
                MoveOver(part, m_staging / file.localName);
                return;
            }
            fs::remove(part);
            if (attempt == 2)
                throw Refused(text::Fill(text::ArrivedWrong, file.localName));
        }
    }

    /// Fetches what is missing of a file. The signature of the whole.
    std::string Receive(const std::string& number, const PlannedFile& file, const fs::path& part) const
    {
        GrowingFile growing(part, file.signature.size()); // keeps what came before a cut
        bool wanted = true;
        const auto take = [&](std::string_view bytes) {
            growing.Add(bytes);
            wanted = !m_receiver || m_receiver(m_meter);
            return wanted;
        };
        const bool found = m_client.Fetch(number, file.serviceName, file.signature, growing.Held(), take);
        if (!wanted)
            throw CancelledByUser();
        if (!found)
            throw Refused(text::Replaced);
        return growing.Finish();
    }

    // First all files to the practice's volume, out of sight; then, one rename each, to their places. A
    // rename that fails leaves the others where the next run finds them.
    void Place(const std::vector<const PlannedFile*>& files) const
    {
        fs::create_directories(m_near);
        for (const PlannedFile* file : files)
        {
            const fs::path from = m_staging / file->localName, to = m_near / file->localName;
            if (SizeOf(from) < 0 || MoveOver(from, to))
                continue;
            const fs::path copy = m_near / (file->localName + Unfinished);
            fs::copy_file(from, copy, fs::copy_options::overwrite_existing);
            SyncFile(copy);
            MoveOver(copy, to);
        }
        for (const PlannedFile* file : files)
            MoveOver(m_near / file->localName, m_folders.working / file->localName);
        DropStaged(m_task, m_folders);
    }

    const Task& m_task;
    ServiceClient& m_client;
    const Folders& m_folders;
    const ProgressReceiver& m_receiver;
    fs::path m_staging, m_near;
    Progress m_meter;
};
} // namespace

namespace rasko
{
int ProgressStatus(std::int64_t done, std::int64_t total)
{
    if (total <= 0)
        return Begun;
    return static_cast<int>(std::clamp<std::int64_t>(done, 0, total) * MostPercent / total);
}

Outcome RunTask(const Task& task, ServiceClient& client, const Folders& folders,
                const ProgressReceiver& progress)
{
    try
    {
        if (task.upload)
            Upload(task, client, folders, progress).Run();
        else
            Download(task, client, folders, progress).Run();
        return {};
    }
    catch (const CancelledByUser&)
    {
        return {Outcome::Stopped, {}};
    }
    catch (const Interrupted& cut)
    {
        return {Outcome::Waiting, text::Fill(text::NoAnswer, cut.what())};
    }
    catch (const Garbled& reply)
    {
        return {Outcome::Waiting, reply.what()};
    }
    catch (const Refused& refusal)
    {
        return {Outcome::Hopeless, refusal.what()};
    }
    catch (const std::exception& error)
    {
        return {Outcome::Waiting, text::Fill(text::LocalFault, error.what())};
    }
}

void DropStaged(const Task& task, const Folders& folders) noexcept
{
    std::error_code ignored;
    fs::remove_all(StagingOf(task, folders.rasko), ignored);
    fs::remove_all(StagingOf(task, folders.working), ignored);
}
} // namespace rasko
