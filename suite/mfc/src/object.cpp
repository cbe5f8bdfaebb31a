#include "afx.h"

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

namespace
{
CRuntimeClass classCObject = {"CObject", nullptr};
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
