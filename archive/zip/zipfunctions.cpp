#include "archive/zip/zipfunctions.h"

#include <new>

namespace arc
{
namespace
{
// The stream handle that the library passes around.
struct Stream
{
    std::unique_ptr<File> file;
    bool written = false; // opened for writing
};
} // namespace

struct ZipFileFunctions::Callbacks
{
    static ZipFileFunctions& Self(voidpf opaque)
    {
        return *static_cast<ZipFileFunctions*>(opaque);
    }

    static Stream& Of(voidpf stream)
    {
        return *static_cast<Stream*>(stream);
    }

    static voidpf ZCALLBACK Open(voidpf opaque, const void* path, int mode)
    {
        ZipFileFunctions& self = Self(opaque);
        Access access = self.m_reading;
        if ((mode & ZLIB_FILEFUNC_MODE_CREATE) != 0)
        {
            access = self.m_creating;
        }
        else if ((mode & ZLIB_FILEFUNC_MODE_READWRITEFILTER) != ZLIB_FILEFUNC_MODE_READ)
        {
            access = Access::Update;
        }
        try
        {
            auto stream = std::make_unique<Stream>();
            stream->file = self.m_files.Open(static_cast<const char*>(path), access);
            stream->written = access != self.m_reading;
            if (stream->file)
            {
                return stream.release();
            }
        }
        catch (const std::bad_alloc&)
        {
        }
        self.m_bFailed = true;
        return nullptr;
    }

    static uLong ZCALLBACK Read(voidpf opaque, voidpf stream, void* buffer, uLong bytes)
    {
        const auto got = Of(stream).file->Read(buffer, bytes);
        Self(opaque).m_bFailed |= !got;
        return static_cast<uLong>(got.value_or(0));
    }

    static uLong ZCALLBACK Write(voidpf opaque, voidpf stream, const void* data, uLong bytes)
    {
        const bool written = Of(stream).file->Write(data, bytes);
        Self(opaque).m_bFailed |= !written;
        return written ? bytes : 0;
    }

    static ZPOS64_T ZCALLBACK Tell(voidpf, voidpf stream)
    {
        return Of(stream).file->Position();
    }

    static long ZCALLBACK Seek(voidpf opaque, voidpf stream, ZPOS64_T offset, int origin)
    {
        File& file = *Of(stream).file;
        std::optional<std::uint64_t> base = 0;
        if (origin == ZLIB_FILEFUNC_SEEK_CUR)
        {
            base = file.Position();
        }
        else if (origin == ZLIB_FILEFUNC_SEEK_END)
        {
            base = file.Size();
        }
        const bool done = base && file.Seek(*base + offset);
        Self(opaque).m_bFailed |= !done;
        return done ? 0 : -1;
    }

    static int ZCALLBACK Close(voidpf opaque, voidpf stream)
    {
        const std::unique_ptr<Stream> owned(&Of(stream));
        const bool flushed = !owned->written || owned->file->FlushToDisk();
        const bool closed = owned->file->Close() && flushed;
        Self(opaque).m_bFailed |= !closed;
        return closed ? 0 : -1;
    }

    static int ZCALLBACK Error(voidpf opaque, voidpf)
    {
        return Self(opaque).m_bFailed ? 1 : 0;
    }
};

ZipFileFunctions::ZipFileFunctions(FileSystem& files, Access creating, Access reading)
    : m_files(files), m_creating(creating), m_reading(reading)
{
    m_table.zopen64_file = Callbacks::Open;
    m_table.zread_file = Callbacks::Read;
    m_table.zwrite_file = Callbacks::Write;
    m_table.ztell64_file = Callbacks::Tell;
    m_table.zseek64_file = Callbacks::Seek;
    m_table.zclose_file = Callbacks::Close;
    m_table.zerror_file = Callbacks::Error;
    m_table.opaque = this;
}

zlib_filefunc64_def* ZipFileFunctions::Table()
{
    return &m_table;
}

bool ZipFileFunctions::Failed() const
{
    return m_bFailed;
}
} // namespace arc
