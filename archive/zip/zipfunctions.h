// The zip library's file functions over the file system interface.
#pragma once

#include "archive/files/filesystem.h"

#include <cstddef>

#include <minizip/ioapi.h>

namespace arc
{
/// One of these serves one open zip and outlives its handle. No C++ exception passes through the library.
class ZipFileFunctions
{
public:
    /// creating: CreateNew or Replace, for a zip that is to be created. reading: how one that is only read is
    /// opened.
    explicit ZipFileFunctions(FileSystem& files, Access creating = Access::Replace,
                              Access reading = Access::ReadShared);
    ZipFileFunctions(const ZipFileFunctions&) = delete;
    ZipFileFunctions& operator=(const ZipFileFunctions&) = delete;

    /// For the library; this object's own.
    zlib_filefunc64_def* Table();
    /// True once any call failed; the library does not tell of every one.
    bool Failed() const;

private:
    struct Callbacks;

    FileSystem& m_files;
    const Access m_creating;
    const Access m_reading;
    zlib_filefunc64_def m_table{};
    bool m_bFailed = false;
};
} // namespace arc
