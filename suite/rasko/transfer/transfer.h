// Carries out one task of the table: an upload or a download, from wherever it was left.
#pragma once

#include "suite/rasko/transfer/serviceclient.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace rasko
{
/// The status of a task's row. Below Finished it is pending.
enum Status : int
{
    Queued = -2,
    Begun = 0, ///< up to MostPercent: percent of the bytes
    MostPercent = 89,
    Placing = 90, ///< a download: everything has arrived and is put in place
    Finished = 100,
    Failed = 101,
    Cancelled = 102,
};

/// Percent as a row's status.
int ProgressStatus(std::int64_t done, std::int64_t total);

struct Task
{
    std::int64_t number = 0; ///< of its row
    bool upload = true;
    std::string data; ///< UTF-8: the shared patient record, or the manifest
};

struct Folders
{
    std::filesystem::path working; ///< the practice's live files
    std::filesystem::path rasko;   ///< the transfer program's own; may be on another volume
};

struct Progress
{
    int status = Queued;
    std::int64_t done = 0, total = 0; ///< an upload's bytes, a download's files
    std::string file;                 ///< being sent or fetched
};

struct Outcome
{
    enum Kind
    {
        Complete,
        Waiting, ///< no connection, no answer of the service's, or a fault of this computer: tried again
        Hopeless,
        Stopped ///< by the user
    } kind = Complete;
    std::string reason; ///< a sentence when it waits or is hopeless
};

/// Told what has been reached; false asks to stop. Called on the transfer's thread.
using ProgressReceiver = std::function<bool(const Progress&)>;

/// Runs to the end, a cut or the user's cancel. Whatever happens, and wherever the process ends, running it
/// again goes on from there; nothing of a download is in the practice before all of it has arrived and has
/// been checked. Throws nothing.
Outcome RunTask(const Task& task, ServiceClient& client, const Folders& folders,
                const ProgressReceiver& progress);

/// Removes what a task keeps on the disk. For tasks that are cancelled or have failed.
void DropStaged(const Task& task, const Folders& folders) noexcept;
} // namespace rasko
