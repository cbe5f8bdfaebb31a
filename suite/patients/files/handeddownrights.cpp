#include "suite/patients/files/handeddownrights.h"

#include <aclapi.h>

#include <utility>

namespace
{
/// Has the system work the rights out.
bool Inherit(std::string path)
{
    ACL none;
    return InitializeAcl(&none, sizeof(none), ACL_REVISION) &&
           SetNamedSecurityInfoA(path.data(), SE_FILE_OBJECT,
                                 DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                                 nullptr, &none, nullptr) == ERROR_SUCCESS;
}

/// Whether both descriptors have this identifier, and the same one.
template <class Get> bool IsSame(Get get, PSECURITY_DESCRIPTOR pOne, PSECURITY_DESCRIPTOR pOther)
{
    PSID pFirst = nullptr, pSecond = nullptr;
    BOOL bDefaulted = FALSE;
    return get(pOne, &pFirst, &bDefaulted) && get(pOther, &pSecond, &bDefaulted) && pFirst != nullptr &&
           pSecond != nullptr && EqualSid(pFirst, pSecond);
}
} // namespace

bool patCHandedDownRights::Give(HANDLE hFile, const std::string& path)
{
    // What is handed down to the owner and the owner's group depends on who they are.
    Descriptor owner = Ask(hFile, OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION);
    if (!m_rights.empty() && IsSameOwner(owner, m_owner))
        return SetKernelObjectSecurity(hFile, DACL_SECURITY_INFORMATION, m_rights.data());
    if (!Inherit(path))
        return false;
    m_rights = Ask(hFile, DACL_SECURITY_INFORMATION);
    // Without it the system would forget that the rights are the folder's.
    constexpr SECURITY_DESCRIPTOR_CONTROL Inherited = SE_DACL_AUTO_INHERIT_REQ | SE_DACL_AUTO_INHERITED;
    if (!m_rights.empty() && !SetSecurityDescriptorControl(m_rights.data(), Inherited, Inherited))
        m_rights.clear();
    m_owner = std::move(owner);
    return true;
}

/// Empty when it cannot be asked.
patCHandedDownRights::Descriptor patCHandedDownRights::Ask(HANDLE hFile, SECURITY_INFORMATION information)
{
    DWORD dwBytes = 0;
    GetKernelObjectSecurity(hFile, information, nullptr, 0, &dwBytes);
    Descriptor descriptor(dwBytes);
    if (!GetKernelObjectSecurity(hFile, information, descriptor.data(), dwBytes, &dwBytes))
        descriptor.clear();
    return descriptor;
}

bool patCHandedDownRights::IsSameOwner(Descriptor& one, Descriptor& other)
{
    return !one.empty() && !other.empty() && IsSame(GetSecurityDescriptorOwner, one.data(), other.data()) &&
           IsSame(GetSecurityDescriptorGroup, one.data(), other.data());
}
