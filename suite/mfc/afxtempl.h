// Collection templates. Sizes and indexes are INT_PTR; a bad index throws CInvalidArgException. Collections
// own their elements, not what pointer elements point to.
#pragma once

#include "afx.h"

template <class TYPE, class ARG_TYPE = const TYPE&> class CArray : public CObject
{
public:
    CArray() = default;

    INT_PTR GetSize() const
    {
        return static_cast<INT_PTR>(m_data.size());
    }
    BOOL IsEmpty() const
    {
        return m_data.empty();
    }
    void RemoveAll()
    {
        m_data.clear();
    }

    const TYPE& GetAt(INT_PTR nIndex) const
    {
        return m_data[Checked(nIndex)];
    }
    TYPE& GetAt(INT_PTR nIndex)
    {
        return m_data[Checked(nIndex)];
    }
    const TYPE& operator[](INT_PTR nIndex) const
    {
        return m_data[Checked(nIndex)];
    }
    TYPE& operator[](INT_PTR nIndex)
    {
        return m_data[Checked(nIndex)];
    }
    INT_PTR Add(ARG_TYPE newElement)
    {
        m_data.push_back(TYPE(newElement));
        return GetSize() - 1;
    }
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1)
    {
        ENSURE(nIndex >= 0 && nCount >= 0 && nCount <= GetSize() && nIndex <= GetSize() - nCount);
        m_data.erase(m_data.begin() + nIndex, m_data.begin() + nIndex + nCount);
    }

    // For range-based loops and the standard algorithms, as MFC's begin and end overloads are.
    auto begin() const
    {
        return m_data.begin();
    }
    auto end() const
    {
        return m_data.end();
    }
    auto begin()
    {
        return m_data.begin();
    }
    auto end()
    {
        return m_data.end();
    }

private:
    std::size_t Checked(INT_PTR nIndex) const
    {
        ENSURE(nIndex >= 0 && nIndex < GetSize());
        return static_cast<std::size_t>(nIndex);
    }

    std::vector<TYPE> m_data;
};
