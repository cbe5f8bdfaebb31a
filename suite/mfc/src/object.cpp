#include "afx.h"

#include <cstring>
#include <mutex>

// ---------------------------------------------------------------------------------------------------------
// CRuntimeClass

namespace
{
// Extension libraries enter their classes as they load, before this library's own static objects would be
// certain to exist; a function-local list is there when first asked for.
struct ClassList
{
    std::mutex mutex;
    CRuntimeClass* head = nullptr;
};

ClassList& Classes()
{
    static ClassList list;
    return list;
}
} // namespace

CObject* CRuntimeClass::CreateObject()
{
    return m_pfnCreateObject != nullptr ? m_pfnCreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const
{
    ENSURE(pBaseClass != nullptr);
    const CRuntimeClass* current = this;
    while (current != nullptr && current != pBaseClass)
    {
        current = current->m_pfnGetBaseClass != nullptr ? current->m_pfnGetBaseClass() : nullptr;
    }
    return current != nullptr;
}

CRuntimeClass* CRuntimeClass::FromName(LPCSTR lpszClassName)
{
    ENSURE(lpszClassName != nullptr);
    const std::lock_guard lock(Classes().mutex);
    CRuntimeClass* current = Classes().head;
    while (current != nullptr && strcmp(current->m_lpszClassName, lpszClassName) != 0)
    {
        current = current->m_pNextClass;
    }
    return current;
}

CObject* CRuntimeClass::CreateObject(LPCSTR lpszClassName)
{
    CRuntimeClass* found = FromName(lpszClassName);
    return found != nullptr ? found->CreateObject() : nullptr;
}

AFX_CLASSINIT::AFX_CLASSINIT(CRuntimeClass* pNewClass) : m_pClass(pNewClass)
{
    const std::lock_guard lock(Classes().mutex);
    m_pClass->m_pNextClass = Classes().head;
    Classes().head = m_pClass;
}

AFX_CLASSINIT::~AFX_CLASSINIT()
{
    const std::lock_guard lock(Classes().mutex);
    for (CRuntimeClass** link = &Classes().head; *link != nullptr; link = &(*link)->m_pNextClass)
    {
        if (*link == m_pClass)
        {
            *link = m_pClass->m_pNextClass;
            break;
        }
    }
}

// ---------------------------------------------------------------------------------------------------------
// CObject

namespace
{
CRuntimeClass classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr, nullptr};
}

CObject::~CObject() = default;

CRuntimeClass* CObject::GetThisClass()
{
    return &classCObject;
}

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return &classCObject;
}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

BOOL CObject::IsSerializable() const
{
    return GetRuntimeClass()->m_wSchema != 0xFFFF;
}

void CObject::Serialize(CArchive&)
{
}

void CObject::AssertValid() const
{
}
