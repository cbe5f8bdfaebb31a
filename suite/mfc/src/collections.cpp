#include "afxcoll.h"

IMPLEMENT_SERIAL(CByteArray, CObject, 0)
IMPLEMENT_SERIAL(CWordArray, CObject, 0)
IMPLEMENT_SERIAL(CDWordArray, CObject, 0)
IMPLEMENT_SERIAL(CStringArray, CObject, 0)
IMPLEMENT_DYNAMIC(CUIntArray, CObject)
IMPLEMENT_DYNAMIC(CPtrArray, CObject)
IMPLEMENT_DYNAMIC(CObArray, CObject)
IMPLEMENT_DYNAMIC(CPtrList, CObject)
IMPLEMENT_DYNAMIC(CObList, CObject)
IMPLEMENT_DYNAMIC(CStringList, CObject)
IMPLEMENT_DYNAMIC(CMapStringToString, CObject)
IMPLEMENT_DYNAMIC(CMapStringToPtr, CObject)
IMPLEMENT_DYNAMIC(CMapPtrToPtr, CObject)

namespace
{
// A count, then the elements. Loading adds element by element: a count that the file does not hold ends at
// the end of the file, with no memory taken for it.
template <class Array, class Element> void SerializeArray(Array& array, CArchive& ar)
{
    if (ar.IsStoring())
    {
        ar.WriteCount(static_cast<DWORD_PTR>(array.GetSize()));
        for (const Element& element : array)
        {
            ar << element;
        }
        return;
    }
    array.RemoveAll();
    for (DWORD_PTR count = ar.ReadCount(); count != 0; --count)
    {
        Element element{};
        ar >> element;
        array.Add(element);
    }
}
} // namespace

void CByteArray::Serialize(CArchive& ar)
{
    SerializeArray<CByteArray, BYTE>(*this, ar);
}

void CWordArray::Serialize(CArchive& ar)
{
    SerializeArray<CWordArray, WORD>(*this, ar);
}

void CDWordArray::Serialize(CArchive& ar)
{
    SerializeArray<CDWordArray, DWORD>(*this, ar);
}

void CStringArray::Serialize(CArchive& ar)
{
    SerializeArray<CStringArray, CString>(*this, ar);
}
