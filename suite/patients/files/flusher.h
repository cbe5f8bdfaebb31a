#pragma once

// Written files on their way to the disk; inside the library only.

#include "suite/patients/files/filehandle.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Has written files on the disk, several at a time, on threads of its own, while the thread that owns it
/// writes further ones. Only an administrator may have a whole volume written at once.
class patCFlusher
{
public:
    patCFlusher();
    /// Closes what still waits, on the disk or not.
    ~patCFlusher();
    patCFlusher(const patCFlusher&) = delete;
    patCFlusher& operator=(const patCFlusher&) = delete;

    /// Takes a file over, which stays open until it is on the disk, so that nobody comes between. Waits while
    /// many files do. Throws as Finish does.
    void Add(patCHandle file, const std::string& path);

    /// Waits until every file is on the disk and closed. Throws dbErrDiskFull or dbErrIO with the path of a
    /// file that cannot be brought there.
    void Finish();

private:
    struct Written
    {
        patCHandle file;
        std::string path;
    };

    void Run() noexcept;
    void ThrowFailure() const;

    std::mutex m_mutex; ///< guards all but the threads
    std::condition_variable m_changed;
    std::deque<Written> m_waiting;
    size_t m_nUnderWay = 0;
    bool m_bEnds = false;
    DWORD m_dwError = 0; ///< of the first file that failed
    std::string m_failed;
    std::vector<std::thread> m_threads;
};
