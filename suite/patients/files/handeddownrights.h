#pragma once

// Access rights of files that are moved; inside the library only.

#include "suite/patients/files/filehandle.h"

#include <string>
#include <vector>

/// Gives files in one folder the access rights that it hands down, and no others. The system works them out
/// for the first file, which takes it long; the further ones of the same owner get the same.
class patCHandedDownRights
{
public:
    /// For a file opened with READ_CONTROL and WRITE_DAC. False when its rights cannot be changed.
    bool Give(HANDLE hFile, const std::string& path);

private:
    using Descriptor = std::vector<BYTE>;
    static Descriptor Ask(HANDLE hFile, SECURITY_INFORMATION information);
    static bool IsSameOwner(Descriptor& one, Descriptor& other);

    Descriptor m_owner;  ///< of the first file; empty when nothing is known
    Descriptor m_rights; ///< its DACL
};
