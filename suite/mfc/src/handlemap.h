// Which object stands for a handle: one set of maps per thread and module. Private to the framework.
#pragma once

#include "suite/mfc/afxcmn.h"

#include <unordered_map>

// Objects by handle. Permanent objects belong to the program; temporary ones to the map, which numbers them
// in the order of their making so that those made since a moment can be dropped together.
template <class Object, class Handle, Handle Object::*member> class CHandleMap
{
public:
    Object* FindPermanent(Handle handle) const
    {
        const auto found = m_permanent.find(handle);
        return found != m_permanent.end() ? found->second : nullptr;
    }
    void SetPermanent(Handle handle, Object* object)
    {
        m_permanent[handle] = object;
    }
    void Remove(Handle handle)
    {
        m_permanent.erase(handle);
    }
    // The object of the handle; `make` makes a temporary one when there is none.
    template <class Make> Object* Find(Handle handle, unsigned long long serial, const Make& make)
    {
        if (Object* object = FindPermanent(handle))
        {
            return object;
        }
        auto& entry = m_temporary[handle];
        if (!entry.object)
        {
            entry.object = make();
            (*entry.object).*member = handle;
            entry.serial = serial;
        }
        return entry.object.get();
    }
    void DropSince(unsigned long long mark)
    {
        std::erase_if(m_temporary, [mark](const auto& item) { return item.second.serial > mark; });
    }
    std::size_t CountTemporary() const
    {
        return m_temporary.size();
    }

private:
    // A temporary object never owns its handle.
    struct Entry
    {
        Entry() = default;
        Entry(Entry&&) = delete;
        Entry& operator=(Entry&&) = delete;
        ~Entry()
        {
            if (object)
            {
                (*object).*member = nullptr;
            }
        }
        std::unique_ptr<Object> object;
        unsigned long long serial = 0;
    };
    std::unordered_map<Handle, Object*> m_permanent;
    std::unordered_map<Handle, Entry> m_temporary;
};

class CHandleMaps
{
public:
    CHandleMap<CWnd, HWND, &CWnd::m_hWnd> windows;
    CHandleMap<CMenu, HMENU, &CMenu::m_hMenu> menus;
    CHandleMap<CDC, HDC, &CDC::m_hDC> contexts;
    CHandleMap<CGdiObject, HGDIOBJ, &CGdiObject::m_hObject> gdi;

    // The number of the next temporary object.
    unsigned long long NextSerial()
    {
        return ++m_serial;
    }
    unsigned long long Mark() const
    {
        return m_serial;
    }
    void DropSince(unsigned long long mark);

private:
    unsigned long long m_serial = 0;
};

// The maps of the current thread and module state.
CHandleMaps& AfxMaps();

// Around a message loop: what its handlers made can be dropped when the loop is idle, while the objects that
// the code which runs the loop still holds stay.
class CTempMapScope
{
public:
    CTempMapScope() : m_mark(AfxMaps().Mark())
    {
    }
    void Drop() const
    {
        AfxMaps().DropSince(m_mark);
    }

private:
    unsigned long long m_mark;
};
