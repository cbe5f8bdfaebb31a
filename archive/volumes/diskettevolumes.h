// The volumes of a stream on numbered diskettes that the user puts into a drive one after another.
#pragma once

#include "archive/volumes/diskette.h"
#include "archive/volumes/volumestream.h"

#include <cstdint>
#include <string>

namespace arc
{
/// How the user is asked while diskettes are changed.
class DiskettePrompts
{
public:
    virtual ~DiskettePrompts() = default;
    /// Asks for a diskette; false aborts.
    virtual bool Insert(int number, char drive) = 0;
    /// A question of the string table (DisketteQuestion) about the diskette in the drive; false aborts.
    virtual bool UseAnyway(unsigned text) = 0;
    /// The diskette read is not the one wanted; false: the user wants no more.
    virtual bool InsertRight(int number, char drive) = 0;
    /// Tells that the diskette could not be erased, or not be read.
    virtual void WriteFault(char drive) = 0;
    virtual void Unreadable(char drive) = 0;
    /// Shown while a diskette is erased.
    virtual void Erasing() = 0;
    /// How many diskettes the save is expected to take; 0 where that is not known.
    virtual void Expect(std::uint64_t volumes) = 0;
    /// A diskette is about to be written.
    virtual void Writing(int number) = 0;
    /// All of several are written: the first one is wanted again.
    virtual void FirstAgain() = 0;
};

/// For one save or load of one patient, on one thread; files and prompts must outlive it. A diskette is
/// erased before it is written; the first one also receives the label file.
class DisketteVolumes : public VolumeDestination, public VolumeSource
{
public:
    /// firstConfirmed: the user was asked and agreed to lose what the diskette in the drive holds.
    DisketteVolumes(FileSystem& files, DiskettePrompts& prompts, char drive, HeaderLine patient,
                    bool firstConfirmed);

    std::uint64_t ExpectedCapacity() override;
    VolumeStatus OpenForWriting(int number, std::unique_ptr<File>& volume, std::uint64_t& capacity) override;
    VolumeStatus OpenForReading(int number, std::unique_ptr<File>& volume) override;
    VolumeStatus Settle(int number, VolumeStatus problem) override;

    int VolumesWritten() const
    {
        return m_nWritten;
    }

private:
    std::string Root() const;
    std::string VolumePath(int number) const;
    bool Insert(int number);
    bool AgreeToUse(int number);
    bool WriteLabel();

    FileSystem& m_files;
    DiskettePrompts& m_prompts;
    const char m_drive;
    const HeaderLine m_patient;
    bool m_bConfirmed;
    int m_nWritten = 0;
    int m_nInDrive = 0; ///< number of the diskette that was last written or read
};
} // namespace arc
