#include "archive/volumes/volumestream.h"

#include "archive/files/filenames.h"
#include "archive/files/outputfile.h"
#include "archive/files/pathsafety.h"
#include "archive/files/progress.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <set>

namespace arc
{
namespace
{
// Bytes of a volume that hold no data.
std::size_t Overhead(int volume)
{
    return VolumeHeaderSize + (volume == 1 ? TotalBlockSize : 0);
}

// Produces the stream's bytes: each file's record and, right behind it, its contents.
class StreamProducer
{
public:
    StreamProducer(FileSystem& files, const std::string& folder, const std::vector<PresentFile>& set,
                   RecordForm form)
        : m_files(files), m_folder(folder), m_set(set), m_form(form)
    {
    }

    // Fills the buffer as far as the stream goes.
    VolumeStatus Fill(unsigned char* buffer, std::size_t size, std::size_t& filled)
    {
        filled = 0;
        while (filled < size && (m_recordTaken < m_record.size() || m_left > 0 || m_next < m_set.size()))
        {
            VolumeStatus status = VolumeStatus::Done;
            if (m_recordTaken < m_record.size())
            {
                const std::size_t bytes = std::min(size - filled, m_record.size() - m_recordTaken);
                std::memcpy(buffer + filled, m_record.data() + m_recordTaken, bytes);
                m_recordTaken += bytes;
                filled += bytes;
            }
            else if (m_left > 0)
            {
                status = TakeContents(buffer, size, filled);
            }
            else
            {
                status = OpenNext();
            }
            if (status != VolumeStatus::Done)
            {
                return status;
            }
        }
        return VolumeStatus::Done;
    }

private:
    VolumeStatus OpenNext()
    {
        const PresentFile& next = m_set[m_next++];
        m_file = m_files.Open(JoinPath(m_folder, next.name), Access::ReadShared);
        if (!m_file)
        {
            return VolumeStatus::OpenFailed;
        }
        // The total already stands in volume 1: a file that is no longer as long as it was would shift all
        // behind it.
        if (m_file->Size() != next.size)
        {
            return VolumeStatus::FileChanged;
        }
        m_record = EncodeRecord({static_cast<std::uint32_t>(next.size), next.name}, m_form);
        m_recordTaken = 0;
        m_left = next.size;
        if (m_left == 0)
        {
            m_file.reset();
        }
        return VolumeStatus::Done;
    }

    VolumeStatus TakeContents(unsigned char* buffer, std::size_t size, std::size_t& filled)
    {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size - filled, m_left));
        if (m_file->Read(buffer + filled, wanted) != wanted)
        {
            return VolumeStatus::FileChanged;
        }
        filled += wanted;
        m_left -= wanted;
        if (m_left == 0)
        {
            m_file.reset();
        }
        return VolumeStatus::Done;
    }

    FileSystem& m_files;
    const std::string& m_folder;
    const std::vector<PresentFile>& m_set;
    RecordForm m_form;
    std::size_t m_next = 0; // index of the file whose record comes next
    std::string m_record;
    std::size_t m_recordTaken = 0;
    std::unique_ptr<File> m_file;
    std::uint64_t m_left = 0; // bytes of the open file
};

// Cuts the stream into volumes.
class VolumeCutter
{
public:
    VolumeCutter(VolumeDestination& destination, const VolumeHeader& header, std::uint64_t total,
                 const VolumeProgress& progress)
        : m_destination(destination), m_header(header), m_total(total), m_progress(progress)
    {
    }

    VolumeStatus Put(const unsigned char* data, std::size_t bytes)
    {
        while (bytes > 0)
        {
            if (!m_volume)
            {
                if (const VolumeStatus status = OpenNext(); status != VolumeStatus::Done)
                {
                    return status;
                }
            }
            const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, m_room));
            if (!m_volume->Write(data, part))
            {
                return VolumeStatus::WriteFailed;
            }
            data += part;
            bytes -= part;
            m_room -= part;
            m_dataWritten += part;
            m_running += part;
            if ((m_room == 0 || m_dataWritten == m_total) && !CloseVolume())
            {
                return VolumeStatus::WriteFailed;
            }
            if (m_progress && !m_progress(ProgressPercent(m_running, m_total)))
            {
                return VolumeStatus::Cancelled;
            }
        }
        return VolumeStatus::Done;
    }

    bool IsComplete() const
    {
        return m_dataWritten == m_total;
    }

private:
    VolumeStatus OpenNext()
    {
        if (++m_number > MaxVolumes)
        {
            return VolumeStatus::TooManyVolumes;
        }
        std::uint64_t capacity = 0;
        if (const VolumeStatus status = m_destination.OpenForWriting(m_number, m_volume, capacity);
            status != VolumeStatus::Done)
        {
            return status;
        }
        const std::size_t overhead = Overhead(m_number);
        if (capacity <= overhead)
        {
            return VolumeStatus::NoRoom;
        }
        m_header.volume = static_cast<std::uint8_t>(m_number);
        const auto header = EncodeHeader(m_header);
        const auto block = EncodeTotal(static_cast<std::uint32_t>(m_total));
        if (!m_volume->Write(header.data(), header.size()) ||
            (m_number == 1 && !m_volume->Write(block.data(), block.size())))
        {
            return VolumeStatus::WriteFailed;
        }
        m_room = capacity - overhead;
        m_running += overhead;
        return VolumeStatus::Done;
    }

    bool CloseVolume()
    {
        const bool closed = m_volume->FlushToDisk() && m_volume->Close();
        m_volume.reset();
        return closed;
    }

    VolumeDestination& m_destination;
    VolumeHeader m_header;
    std::uint64_t m_total; // bytes of data
    const VolumeProgress& m_progress;
    std::unique_ptr<File> m_volume;
    int m_number = 0;
    std::uint64_t m_room = 0;        // bytes the open volume still takes
    std::uint64_t m_dataWritten = 0; // decides when the stream is complete
    std::uint64_t m_running = 0;     // with the headers, for the progress
};

// Joins the volumes to one stream again.
class VolumeJoiner
{
public:
    explicit VolumeJoiner(VolumeSource& source) : m_source(source)
    {
    }

    // Opens volume 1; header and total are known afterwards.
    VolumeStatus Start()
    {
        return OpenNext();
    }

    // Takes exactly this many bytes of the stream, which must not end before.
    VolumeStatus Read(unsigned char* buffer, std::size_t bytes)
    {
        while (bytes > 0)
        {
            const auto got = m_volume->Read(buffer, bytes);
            if (got.value_or(0) > 0)
            {
                buffer += *got;
                bytes -= *got;
                m_running += *got;
                m_position += *got;
            }
            else if (const VolumeStatus status = got ? OpenNext() : Settle(VolumeStatus::OpenFailed);
                     status != VolumeStatus::Done)
            {
                return status;
            }
        }
        return VolumeStatus::Done;
    }

    const VolumeHeader& Header() const
    {
        return m_header;
    }
    std::uint64_t Total() const
    {
        return m_total;
    }
    int Percent() const
    {
        return ProgressPercent(m_running, m_total);
    }

private:
    VolumeStatus OpenNext()
    {
        if (++m_number > MaxVolumes)
        {
            return VolumeStatus::Corrupt;
        }
        m_position = Overhead(m_number);
        m_running += m_position;
        return Settle(Open());
    }

    // Until the volume is open at the position, when that went wrong; else why the reading ends.
    VolumeStatus Settle(VolumeStatus status)
    {
        while (status == VolumeStatus::OpenFailed || status == VolumeStatus::Corrupt ||
               status == VolumeStatus::OutOfOrder)
        {
            m_volume.reset();
            status = m_source.Settle(m_number, status);
            if (status != VolumeStatus::Done)
            {
                return status;
            }
            status = Open();
        }
        return status;
    }

    VolumeStatus Open()
    {
        VolumeStatus status = m_source.OpenForReading(m_number, m_volume);
        if (status == VolumeStatus::Done)
        {
            status = ReadHeader();
        }
        return status == VolumeStatus::Done && !m_volume->Seek(m_position) ? VolumeStatus::OpenFailed
                                                                           : status;
    }

    VolumeStatus ReadHeader()
    {
        unsigned char bytes[VolumeHeaderSize + TotalBlockSize];
        const std::size_t overhead = Overhead(m_number);
        const auto got = m_volume->Read(bytes, overhead);
        if (got != overhead)
        {
            return got ? VolumeStatus::Corrupt : VolumeStatus::OpenFailed;
        }
        const auto header = DecodeHeader(ByteView(bytes, VolumeHeaderSize));
        if (!header)
        {
            return VolumeStatus::Corrupt;
        }
        if (header->volume != m_number || (m_knowsSet && !header->SameSet(m_header)))
        {
            return VolumeStatus::OutOfOrder;
        }
        m_header = *header;
        m_knowsSet = true;
        if (m_number == 1)
        {
            m_total = DecodeTotal(ByteView(bytes + VolumeHeaderSize, TotalBlockSize)).value_or(0);
        }
        return VolumeStatus::Done;
    }

    VolumeSource& m_source;
    std::unique_ptr<File> m_volume;
    VolumeHeader m_header;
    bool m_knowsSet = false; // the header is of volume 1 or one behind it
    std::uint64_t m_total = 0;
    std::uint64_t m_running = 0;
    std::uint64_t m_position = 0; // in the open volume
    int m_number = 0;
};

// What becomes of the files that a stream holds.
class StreamTaker
{
public:
    virtual ~StreamTaker() = default;
    // Before the first file; bytes: of all files.
    virtual VolumeStatus Start(std::size_t fileCount, std::uint64_t bytes) = 0;
    virtual VolumeStatus Begin(const DirectoryRecord& record) = 0;
    virtual VolumeStatus Take(const unsigned char* data, std::size_t bytes) = 0;
    virtual VolumeStatus End(const DirectoryRecord& record) = 0;
};

VolumeStatus TakeFile(VolumeJoiner& stream, const DirectoryRecord& record, StreamTaker& taker,
                      TransferBuffer& buffer, const VolumeProgress& progress)
{
    VolumeStatus status = taker.Begin(record);
    std::uint32_t left = record.length;
    while (status == VolumeStatus::Done && left > 0)
    {
        const std::size_t part = std::min<std::size_t>(left, buffer.size);
        status = stream.Read(buffer.bytes.get(), part);
        if (status == VolumeStatus::Done)
        {
            status = taker.Take(buffer.bytes.get(), part);
        }
        left -= static_cast<std::uint32_t>(part);
        if (progress && !progress(stream.Percent()))
        {
            return VolumeStatus::Cancelled;
        }
    }
    return status == VolumeStatus::Done ? taker.End(record) : status;
}

VolumeStatus ReadStream(VolumeSource& source, StreamTaker& taker, TransferBuffer buffer,
                        const VolumeProgress& progress)
{
    if (!buffer.bytes)
    {
        return VolumeStatus::OutOfMemory;
    }
    VolumeJoiner stream(source);
    if (const VolumeStatus status = stream.Start(); status != VolumeStatus::Done)
    {
        return status;
    }
    const RecordForm form = stream.Header().form;
    const std::size_t recordSize = RecordSize(form);
    const std::uint64_t records = std::uint64_t{stream.Header().fileCount} * recordSize;
    if (records == 0 || stream.Total() < records)
    {
        return VolumeStatus::Corrupt;
    }
    std::uint64_t contentsLeft = stream.Total() - records;
    if (const VolumeStatus status = taker.Start(stream.Header().fileCount, contentsLeft);
        status != VolumeStatus::Done)
    {
        return status;
    }
    for (int file = 0; file < stream.Header().fileCount; ++file)
    {
        unsigned char bytes[LongRecordSize];
        VolumeStatus status = stream.Read(bytes, recordSize);
        if (status != VolumeStatus::Done)
        {
            return status;
        }
        const auto record = DecodeRecord(ByteView(bytes, recordSize), form);
        if (!record || record->length > contentsLeft)
        {
            return VolumeStatus::Corrupt;
        }
        contentsLeft -= record->length;
        status = TakeFile(stream, *record, taker, buffer, progress);
        if (status != VolumeStatus::Done)
        {
            return status;
        }
    }
    return contentsLeft == 0 ? VolumeStatus::Done : VolumeStatus::Corrupt;
}

class FileTaker : public StreamTaker
{
public:
    FileTaker(FileSystem& files, const std::string& folder, std::vector<PresentFile>& read)
        : m_files(files), m_folder(folder), m_read(read)
    {
    }

    VolumeStatus Start(std::size_t, std::uint64_t bytes) override
    {
        const auto space = m_files.Space(m_folder);
        return space && space->FreeBytes() < bytes ? VolumeStatus::NoRoom : VolumeStatus::Done;
    }

    VolumeStatus Begin(const DirectoryRecord& record) override
    {
        const auto name = SafeFileName(record.name, m_folder.size());
        if (!name)
        {
            return VolumeStatus::UnsafeName;
        }
        if (!m_names.insert(SameFileKey(*name)).second)
        {
            return VolumeStatus::DuplicateName;
        }
        m_file = std::make_unique<OutputFile>(m_files);
        return m_file->Create(JoinPath(m_folder, *name)) ? VolumeStatus::Done : VolumeStatus::OpenFailed;
    }

    VolumeStatus Take(const unsigned char* data, std::size_t bytes) override
    {
        return m_file->Write(data, bytes) ? VolumeStatus::Done : VolumeStatus::WriteFailed;
    }

    VolumeStatus End(const DirectoryRecord& record) override
    {
        if (!m_file->Keep())
        {
            return VolumeStatus::WriteFailed;
        }
        m_read.push_back({record.name, record.length, 0});
        return VolumeStatus::Done;
    }

private:
    FileSystem& m_files;
    const std::string& m_folder;
    std::vector<PresentFile>& m_read;
    std::set<std::string> m_names; // taken by this stream, by SameFileKey
    std::unique_ptr<OutputFile> m_file;
};

// Compares with the files that the stream was written from.
class Comparer : public StreamTaker
{
public:
    Comparer(FileSystem& files, const std::string& folder, const std::vector<PresentFile>& set)
        : m_files(files), m_folder(folder), m_set(set)
    {
    }

    VolumeStatus Start(std::size_t fileCount, std::uint64_t) override
    {
        return fileCount == m_set.size() ? VolumeStatus::Done : VolumeStatus::Corrupt;
    }

    VolumeStatus Begin(const DirectoryRecord& record) override
    {
        const PresentFile& expected = m_set[m_next++];
        if (record.name != expected.name || record.length != expected.size)
        {
            return VolumeStatus::Corrupt;
        }
        m_file = m_files.Open(JoinPath(m_folder, expected.name), Access::ReadShared);
        return m_file ? VolumeStatus::Done : VolumeStatus::OpenFailed;
    }

    VolumeStatus Take(const unsigned char* data, std::size_t bytes) override
    {
        m_original.resize(bytes);
        if (m_file->Read(m_original.data(), bytes) != bytes)
        {
            return VolumeStatus::FileChanged;
        }
        return std::equal(m_original.begin(), m_original.end(), data) ? VolumeStatus::Done
                                                                      : VolumeStatus::Corrupt;
    }

    VolumeStatus End(const DirectoryRecord&) override
    {
        m_file.reset();
        return VolumeStatus::Done;
    }

private:
    FileSystem& m_files;
    const std::string& m_folder;
    const std::vector<PresentFile>& m_set;
    std::size_t m_next = 0;
    std::unique_ptr<File> m_file;
    std::vector<unsigned char> m_original;
};
} // namespace

TransferBuffer TransferBuffer::Allocate(const Allocator& allocator)
{
    const auto allocate = [&](std::size_t wanted) {
        return allocator ? allocator(wanted)
                         : std::unique_ptr<unsigned char[]>(new (std::nothrow) unsigned char[wanted]);
    };
    TransferBuffer buffer;
    for (std::size_t size = TransferBufferSize; size > 0 && !buffer.bytes; size /= 2)
    {
        buffer.bytes = allocate(size);
        buffer.size = buffer.bytes ? size : 0;
    }
    return buffer;
}

FolderVolumes::FolderVolumes(FileSystem& files, std::string folder, std::string id)
    : m_files(files), m_folder(std::move(folder)), m_id(std::move(id))
{
}

std::uint64_t FolderVolumes::ExpectedCapacity()
{
    const auto space = m_files.Space(m_folder);
    return space ? space->FreeBytes() : 0;
}

VolumeStatus FolderVolumes::OpenForWriting(int number, std::unique_ptr<File>& volume, std::uint64_t& capacity)
{
    volume = m_files.Open(VolumeFileName(m_folder, m_id, number), Access::CreateNew);
    if (!volume)
    {
        return VolumeStatus::OpenFailed;
    }
    m_nWritten = std::max(m_nWritten, number);
    const auto space = m_files.Space(m_folder);
    if (!space)
    {
        return VolumeStatus::OpenFailed;
    }
    capacity = space->FreeBytes();
    return VolumeStatus::Done;
}

VolumeStatus FolderVolumes::OpenForReading(int number, std::unique_ptr<File>& volume)
{
    volume = m_files.Open(VolumeFileName(m_folder, m_id, number), Access::ReadShared);
    return volume ? VolumeStatus::Done : VolumeStatus::OpenFailed;
}

void FolderVolumes::RemoveWritten()
{
    for (; m_nWritten > 0; --m_nWritten)
    {
        m_files.RemoveFile(VolumeFileName(m_folder, m_id, m_nWritten));
    }
}

std::uint64_t StreamLength(const std::vector<PresentFile>& set)
{
    if (set.empty())
    {
        return 0;
    }
    std::uint64_t length = set.size() * RecordSize(FormForFirstFile(set.front().name));
    for (const PresentFile& file : set)
    {
        length += file.size;
    }
    return length;
}

VolumeStatus CheckStreamLimits(const std::vector<PresentFile>& set, std::uint64_t volumeCapacity)
{
    if (set.empty() || set.size() > MaxVolumeFiles)
    {
        return VolumeStatus::TooManyFiles;
    }
    const std::size_t nameCapacity = NameCapacity(FormForFirstFile(set.front().name));
    for (const PresentFile& file : set)
    {
        if (file.size > MaxStreamBytes)
        {
            return VolumeStatus::TooManyBytes;
        }
        if (file.name.empty() || file.name.size() > nameCapacity)
        {
            return VolumeStatus::NameTooLong;
        }
    }
    const std::uint64_t total = StreamLength(set);
    if (total > MaxStreamBytes)
    {
        return VolumeStatus::TooManyBytes;
    }
    if (volumeCapacity == 0)
    {
        return VolumeStatus::Done;
    }
    if (volumeCapacity <= Overhead(1))
    {
        return VolumeStatus::NoRoom;
    }
    const std::uint64_t perVolume = volumeCapacity - VolumeHeaderSize;
    return (total + TotalBlockSize + perVolume - 1) / perVolume <= MaxVolumes ? VolumeStatus::Done
                                                                              : VolumeStatus::TooManyVolumes;
}

VolumeStatus WriteVolumeStream(FileSystem& files, const std::string& folder,
                               const std::vector<PresentFile>& set, const LocalTime& saved,
                               VolumeDestination& destination, const VolumeProgress& progress,
                               TransferBuffer buffer)
{
    if (!buffer.bytes)
    {
        return VolumeStatus::OutOfMemory;
    }
    VolumeStatus status = CheckStreamLimits(set, destination.ExpectedCapacity());
    if (status != VolumeStatus::Done)
    {
        return status;
    }
    const RecordForm form = FormForFirstFile(set.front().name);
    StreamProducer producer(files, folder, set, form);
    VolumeCutter cutter(destination, MakeVolumeHeader(saved, 1, set.size(), form), StreamLength(set),
                        progress);
    while (status == VolumeStatus::Done && !cutter.IsComplete())
    {
        std::size_t filled = 0;
        status = producer.Fill(buffer.bytes.get(), buffer.size, filled);
        if (status == VolumeStatus::Done)
        {
            status = cutter.Put(buffer.bytes.get(), filled);
        }
    }
    return status;
}

VolumeStatus ReadVolumeStream(FileSystem& files, const std::string& folder, VolumeSource& source,
                              std::vector<PresentFile>& read, const VolumeProgress& progress,
                              TransferBuffer buffer)
{
    FileTaker taker(files, folder, read);
    return ReadStream(source, taker, std::move(buffer), progress);
}

VolumeStatus VerifyVolumeStream(FileSystem& files, const std::string& folder,
                                const std::vector<PresentFile>& set, VolumeSource& source,
                                const VolumeProgress& progress, TransferBuffer buffer)
{
    Comparer comparer(files, folder, set);
    return ReadStream(source, comparer, std::move(buffer), progress);
}
} // namespace arc
