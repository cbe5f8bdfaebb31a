#include "suite/patients/files/lifetoken.h"

#include "suite/patients/files/filehandle.h"
#include "suite/patients/store/patmodule.h"

#include <cstdio>

namespace
{
std::string NewName()
{
    static LONG nCount = 0;
    char szName[128];
    snprintf(szName, sizeof(szName), "VELPLACE.%s-%lx-%llx-%lx", patComputerName().GetString(),
             GetCurrentProcessId(), GetTickCount64(), InterlockedIncrement(&nCount));
    return szName;
}
} // namespace

patCLifeToken::patCLifeToken() : m_name(NewName())
{
}

patCLifeToken::~patCLifeToken()
{
    if (IsCreated())
        CloseHandle(m_hFile);
}

void patCLifeToken::Create(const CString& strFolder)
{
    const CString strPath = strFolder + m_name.c_str();
    m_hFile = CreateFileA(strPath, GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                          FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (!IsCreated())
        patThrowFileError(GetLastError(), strPath);
}

bool patCLifeToken::IsAlive(const CString& strFolder, const CString& strName)
{
    // Open without sharing while its process lives; a power failure leaves the file itself behind.
    DeleteFileA(strFolder + strName);
    return !patIsGone(strFolder + strName);
}
