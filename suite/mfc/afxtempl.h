// Collection templates. Sizes and indexes are INT_PTR; a bad index throws CInvalidArgException. Collections
// own their elements, not what pointer elements point to.
#pragma once

#include "afx.h"

#include <map>

template <class TYPE, class ARG_TYPE = const TYPE&> class CArray : public CObject
{
public:
    CArray() = default;

    INT_PTR GetSize() const
    {
        return static_cast<INT_PTR>(m_data.size());
    }
    INT_PTR GetCount() const
    {
        return GetSize();
    }
    BOOL IsEmpty() const
    {
        return m_data.empty();
    }
    INT_PTR GetUpperBound() const
    {
        return GetSize() - 1;
    }
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1)
    {
        ENSURE(nNewSize >= 0);
        if (nGrowBy > 0)
        {
            m_data.reserve(static_cast<std::size_t>(nNewSize));
        }
        m_data.resize(static_cast<std::size_t>(nNewSize));
    }
    void FreeExtra()
    {
        m_data.shrink_to_fit();
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
    TYPE& ElementAt(INT_PTR nIndex)
    {
        return m_data[Checked(nIndex)];
    }
    const TYPE& ElementAt(INT_PTR nIndex) const
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
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement)
    {
        m_data[Checked(nIndex)] = newElement;
    }
    void SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement)
    {
        ENSURE(nIndex >= 0);
        if (nIndex >= GetSize())
        {
            SetSize(nIndex + 1);
        }
        SetAt(nIndex, newElement);
    }
    INT_PTR Add(ARG_TYPE newElement)
    {
        m_data.push_back(TYPE(newElement));
        return GetUpperBound();
    }
    INT_PTR Append(const CArray& src)
    {
        const INT_PTR nOldSize = GetSize();
        const std::vector<TYPE> copy(src.m_data); // src may be this array
        m_data.insert(m_data.end(), copy.begin(), copy.end());
        return nOldSize;
    }
    void Copy(const CArray& src)
    {
        m_data = src.m_data;
    }
    // Beyond the end the array grows to reach nIndex.
    void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1)
    {
        ENSURE(nIndex >= 0 && nCount >= 0);
        if (nIndex > GetSize())
        {
            SetSize(nIndex);
        }
        m_data.insert(m_data.begin() + nIndex, static_cast<std::size_t>(nCount), TYPE(newElement));
    }
    void InsertAt(INT_PTR nStartIndex, CArray* pNewArray)
    {
        ENSURE(nStartIndex >= 0 && pNewArray != nullptr);
        if (nStartIndex > GetSize())
        {
            SetSize(nStartIndex);
        }
        const std::vector<TYPE> copy(pNewArray->m_data);
        m_data.insert(m_data.begin() + nStartIndex, copy.begin(), copy.end());
    }
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1)
    {
        ENSURE(nIndex >= 0 && nCount >= 0 && nCount <= GetSize() && nIndex <= GetSize() - nCount);
        m_data.erase(m_data.begin() + nIndex, m_data.begin() + nIndex + nCount);
    }
    TYPE* GetData()
    {
        return m_data.data();
    }
    const TYPE* GetData() const
    {
        return m_data.data();
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

// A doubly linked list; a POSITION stays valid until its element is removed.
template <class TYPE, class ARG_TYPE = const TYPE&> class CList : public CObject
{
    struct Node
    {
        explicit Node(ARG_TYPE element) : value(element)
        {
        }
        TYPE value;
        Node* previous = nullptr;
        Node* next = nullptr;
    };

public:
    CList() = default;
    ~CList() override
    {
        RemoveAll();
    }

    INT_PTR GetCount() const
    {
        return m_nCount;
    }
    INT_PTR GetSize() const
    {
        return m_nCount;
    }
    BOOL IsEmpty() const
    {
        return m_nCount == 0;
    }
    POSITION GetHeadPosition() const
    {
        return ToPosition(m_pHead);
    }
    POSITION GetTailPosition() const
    {
        return ToPosition(m_pTail);
    }
    TYPE& GetHead()
    {
        return Checked(m_pHead)->value;
    }
    const TYPE& GetHead() const
    {
        return Checked(m_pHead)->value;
    }
    TYPE& GetTail()
    {
        return Checked(m_pTail)->value;
    }
    const TYPE& GetTail() const
    {
        return Checked(m_pTail)->value;
    }
    TYPE& GetAt(POSITION position)
    {
        return Checked(ToNode(position))->value;
    }
    const TYPE& GetAt(POSITION position) const
    {
        return Checked(ToNode(position))->value;
    }
    void SetAt(POSITION position, ARG_TYPE newElement)
    {
        GetAt(position) = newElement;
    }
    TYPE& GetNext(POSITION& rPosition)
    {
        return Step(rPosition, &Node::next)->value;
    }
    const TYPE& GetNext(POSITION& rPosition) const
    {
        return Step(rPosition, &Node::next)->value;
    }
    TYPE& GetPrev(POSITION& rPosition)
    {
        return Step(rPosition, &Node::previous)->value;
    }
    const TYPE& GetPrev(POSITION& rPosition) const
    {
        return Step(rPosition, &Node::previous)->value;
    }
    POSITION AddHead(ARG_TYPE newElement)
    {
        return ToPosition(Link(nullptr, m_pHead, newElement));
    }
    POSITION AddTail(ARG_TYPE newElement)
    {
        return ToPosition(Link(m_pTail, nullptr, newElement));
    }
    POSITION InsertBefore(POSITION position, ARG_TYPE newElement)
    {
        Node* node = Checked(ToNode(position));
        return ToPosition(Link(node->previous, node, newElement));
    }
    POSITION InsertAfter(POSITION position, ARG_TYPE newElement)
    {
        Node* node = Checked(ToNode(position));
        return ToPosition(Link(node, node->next, newElement));
    }
    TYPE RemoveHead()
    {
        TYPE value = GetHead();
        RemoveAt(GetHeadPosition());
        return value;
    }
    TYPE RemoveTail()
    {
        TYPE value = GetTail();
        RemoveAt(GetTailPosition());
        return value;
    }
    void RemoveAt(POSITION position)
    {
        Node* node = Checked(ToNode(position));
        (node->previous != nullptr ? node->previous->next : m_pHead) = node->next;
        (node->next != nullptr ? node->next->previous : m_pTail) = node->previous;
        --m_nCount;
        delete node;
    }
    void RemoveAll()
    {
        while (m_pHead != nullptr)
        {
            RemoveAt(GetHeadPosition());
        }
    }
    POSITION Find(ARG_TYPE searchValue, POSITION startAfter = nullptr) const
    {
        Node* node = startAfter == nullptr ? m_pHead : Checked(ToNode(startAfter))->next;
        while (node != nullptr && !(node->value == searchValue))
        {
            node = node->next;
        }
        return ToPosition(node);
    }
    POSITION FindIndex(INT_PTR nIndex) const
    {
        Node* node = nIndex >= 0 ? m_pHead : nullptr;
        while (node != nullptr && nIndex-- > 0)
        {
            node = node->next;
        }
        return ToPosition(node);
    }

private:
    static POSITION ToPosition(Node* node)
    {
        return reinterpret_cast<POSITION>(node);
    }
    static Node* ToNode(POSITION position)
    {
        return reinterpret_cast<Node*>(position);
    }
    static Node* Checked(Node* node)
    {
        ENSURE(node != nullptr);
        return node;
    }
    static Node* Step(POSITION& rPosition, Node* Node::* direction)
    {
        Node* node = Checked(ToNode(rPosition));
        rPosition = ToPosition(node->*direction);
        return node;
    }
    Node* Link(Node* previous, Node* next, ARG_TYPE newElement)
    {
        Node* node = new Node(newElement);
        node->previous = previous;
        node->next = next;
        (previous != nullptr ? previous->next : m_pHead) = node;
        (next != nullptr ? next->previous : m_pTail) = node;
        ++m_nCount;
        return node;
    }

    Node* m_pHead = nullptr;
    Node* m_pTail = nullptr;
    INT_PTR m_nCount = 0;
};

// A map; a POSITION stays valid until its entry is removed. Entries are visited in the order of the keys.
template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE> class CMap : public CObject
{
public:
    INT_PTR GetCount() const
    {
        return static_cast<INT_PTR>(m_map.size());
    }
    INT_PTR GetSize() const
    {
        return GetCount();
    }
    BOOL IsEmpty() const
    {
        return m_map.empty();
    }
    BOOL Lookup(ARG_KEY key, VALUE& rValue) const
    {
        const auto found = m_map.find(KEY(key));
        if (found == m_map.end())
        {
            return FALSE;
        }
        rValue = found->second;
        return TRUE;
    }
    VALUE& operator[](ARG_KEY key)
    {
        return m_map[KEY(key)];
    }
    void SetAt(ARG_KEY key, ARG_VALUE newValue)
    {
        m_map[KEY(key)] = newValue;
    }
    BOOL RemoveKey(ARG_KEY key)
    {
        return m_map.erase(KEY(key)) != 0;
    }
    void RemoveAll()
    {
        m_map.clear();
    }
    POSITION GetStartPosition() const
    {
        return m_map.empty() ? nullptr : ToPosition(*m_map.begin());
    }
    void GetNextAssoc(POSITION& rNextPosition, KEY& rKey, VALUE& rValue) const
    {
        ENSURE(rNextPosition != nullptr);
        const auto& entry = *reinterpret_cast<const typename Map::value_type*>(rNextPosition);
        rKey = entry.first;
        rValue = entry.second;
        const auto next = m_map.upper_bound(entry.first);
        rNextPosition = next == m_map.end() ? nullptr : ToPosition(*next);
    }

private:
    using Map = std::map<KEY, VALUE>;

    static POSITION ToPosition(const typename Map::value_type& entry)
    {
        return reinterpret_cast<POSITION>(const_cast<typename Map::value_type*>(&entry));
    }

    Map m_map;
};
