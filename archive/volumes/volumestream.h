// A patient's files as one stream of bytes cut into volumes: writing it and reading it back.
#pragma once

#include "archive/files/fileset.h"
#include "archive/files/filesystem.h"
#include "archive/volumes/volumeformat.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace arc
{
enum class VolumeStatus
{
    Done = 0,
    Cancelled,      ///< the user refused a volume or ended the work
    TooManyBytes,   ///< a file or the whole stream needs more than 32 bits
    TooManyFiles,   ///< more than a header can count, or none
    NameTooLong,    ///< a name does not fit the record
    TooManyVolumes, ///< more than 255
    OutOfMemory,
    NoRoom,     ///< the volume holds not even its header and one byte, or the folder to read into is too full
    OpenFailed, ///< a volume could not be opened or read, or a file not opened
    FileChanged,   ///< a file is not as long as it was listed, or cannot be read
    WriteFailed,   ///< a volume or a file could not be written
    Corrupt,       ///< not a volume, too short, or its records contradict it
    OutOfOrder,    ///< a volume of another number or of another save
    UnsafeName,    ///< a record's name may not become a file in the folder
    DuplicateName, ///< two records name the same file
};

/// The percentage of the stream that is done, 0 to 100; the empty stream is done. False ends the work.
using VolumeProgress = std::function<bool(int percent)>;

inline constexpr std::size_t TransferBufferSize = 32767;

/// Memory for the transfer: 32767 bytes, or half as often as an allocation fails. The allocator answers null
/// where it has no memory.
struct TransferBuffer
{
    using Allocator = std::function<std::unique_ptr<unsigned char[]>(std::size_t bytes)>;

    std::unique_ptr<unsigned char[]> bytes; ///< null when not even one byte could be had
    std::size_t size = 0;

    static TransferBuffer Allocate(const Allocator& allocator = {});
};

/// Where volumes are written to. Prompts, checks and erasing of media are its own affair.
class VolumeDestination
{
public:
    virtual ~VolumeDestination() = default;
    /// Bytes that each volume is expected to hold, for the count of volumes before anything is written; 0 =
    /// unknown.
    virtual std::uint64_t ExpectedCapacity() = 0;
    /// Opens the volume with this number (from 1) for writing from empty; capacity: the bytes it can take.
    virtual VolumeStatus OpenForWriting(int number, std::unique_ptr<File>& volume,
                                        std::uint64_t& capacity) = 0;
};

/// Where volumes are read from.
class VolumeSource
{
public:
    virtual ~VolumeSource() = default;
    virtual VolumeStatus OpenForReading(int number, std::unique_ptr<File>& volume) = 0;
    /// Asked when the volume is not the right one or cannot be read: Done when another was put in and is to
    /// be opened, else why the reading ends.
    virtual VolumeStatus Settle(int number, VolumeStatus problem)
    {
        static_cast<void>(number);
        return problem;
    }
};

/// Volumes as files of a folder: ID.001, ID.002 and so on.
class FolderVolumes : public VolumeDestination, public VolumeSource
{
public:
    FolderVolumes(FileSystem& files, std::string folder, std::string id);

    std::uint64_t ExpectedCapacity() override;
    VolumeStatus OpenForWriting(int number, std::unique_ptr<File>& volume, std::uint64_t& capacity) override;
    VolumeStatus OpenForReading(int number, std::unique_ptr<File>& volume) override;

    /// Removes the volumes that were opened for writing, after a save that failed.
    void RemoveWritten();

private:
    FileSystem& m_files;
    std::string m_folder;
    std::string m_id;
    int m_nWritten = 0; ///< highest number opened for writing
};

/// The stream's length that volume 1 states: directory records and files.
std::uint64_t StreamLength(const std::vector<PresentFile>& set);

/// Whether the set fits the format at all; Done when it does. volumeCapacity 0 = not known.
VolumeStatus CheckStreamLimits(const std::vector<PresentFile>& set, std::uint64_t volumeCapacity);

/// Writes the files of a folder as a stream. Limits are checked before anything is opened. A volume is closed
/// when its capacity is used or the last byte of data is written; headers and the total block count towards
/// the capacity and the progress, not towards the stream's length. After a failure the volumes written so far
/// are left to the caller.
VolumeStatus WriteVolumeStream(FileSystem& files, const std::string& folder,
                               const std::vector<PresentFile>& set, const LocalTime& saved,
                               VolumeDestination& destination, const VolumeProgress& progress = {},
                               TransferBuffer buffer = TransferBuffer::Allocate());

/// Reads a stream into a folder that exists. Every record is checked before its file is made: the name, that
/// no other record names the same file, and that its length lies within the stream. An existing file is
/// replaced. A file that could not be read whole is removed; those before it stay. read: the files made, in
/// the stream's order.
VolumeStatus ReadVolumeStream(FileSystem& files, const std::string& folder, VolumeSource& source,
                              std::vector<PresentFile>& read, const VolumeProgress& progress = {},
                              TransferBuffer buffer = TransferBuffer::Allocate());

/// Reads a stream without keeping anything and compares its files with those given, name by name and byte by
/// byte with the folder's files: what was written can be read back.
VolumeStatus VerifyVolumeStream(FileSystem& files, const std::string& folder,
                                const std::vector<PresentFile>& set, VolumeSource& source,
                                const VolumeProgress& progress = {},
                                TransferBuffer buffer = TransferBuffer::Allocate());
} // namespace arc
