#pragma once

#include "suite/patients/store/patdefs.h"

#include <vector>

/// A growing list of values, with the framework's names. Indices run from 0; an index must be valid.
template <typename T> class dbTList
{
public:
    int GetCount() const
    {
        return static_cast<int>(m_items.size());
    }
    BOOL IsEmpty() const
    {
        return m_items.empty();
    }
    const T& GetAt(int nIndex) const
    {
        return m_items.at(static_cast<size_t>(nIndex));
    }
    T& GetAt(int nIndex)
    {
        return m_items.at(static_cast<size_t>(nIndex));
    }
    const T& operator[](int nIndex) const
    {
        return GetAt(nIndex);
    }
    T& operator[](int nIndex)
    {
        return GetAt(nIndex);
    }
    void SetAt(int nIndex, const T& item)
    {
        GetAt(nIndex) = item;
    }

    /// Appends and returns the new item's index.
    int Add(const T& item)
    {
        m_items.push_back(item);
        return GetCount() - 1;
    }
    void RemoveAt(int nIndex)
    {
        m_items.erase(m_items.begin() + nIndex);
    }
    void RemoveAll()
    {
        m_items.clear();
    }

    auto begin()
    {
        return m_items.begin();
    }
    auto end()
    {
        return m_items.end();
    }
    auto begin() const
    {
        return m_items.begin();
    }
    auto end() const
    {
        return m_items.end();
    }

private:
    std::vector<T> m_items;
};
