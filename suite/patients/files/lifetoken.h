#pragma once

#include "suite/patients/store/patdefs.h"

#include <string>

/// A hidden file in the working folder that is there exactly as long as its process lives, by which others see,
/// from whatever computer, that a piece of work is still being done. Owns the file.
class patCLifeToken
{
public:
    /// Makes up a name that no other process uses; there is no file yet.
    patCLifeToken();
    ~patCLifeToken();
    patCLifeToken(const patCLifeToken&) = delete;
    patCLifeToken& operator=(const patCLifeToken&) = delete;

    const std::string& GetName() const
    {
        return m_name;
    }
    bool IsCreated() const
    {
        return m_hFile != INVALID_HANDLE_VALUE;
    }
    /// Makes the file. Throws dbErrIO, dbErrDiskFull.
    void Create(const CString& strFolder);

    /// Whether the process that made a token lives. What cannot be asked counts as living.
    static bool IsAlive(const CString& strFolder, const CString& strName);

private:
    std::string m_name;
    HANDLE m_hFile = INVALID_HANDLE_VALUE;
};
