// Ownership of a COM interface and of a BSTR.
#pragma once

#include <afx.h>

#include <oleauto.h>

#include <string_view>
#include <utility>

/// Owns one reference.
template <typename T> class velComPtr
{
public:
    velComPtr() = default;
    explicit velComPtr(T* p) noexcept : m_p(p)
    {
    }
    velComPtr(const velComPtr& other) noexcept : m_p(other.m_p)
    {
        if (m_p != nullptr)
            m_p->AddRef();
    }
    velComPtr(velComPtr&& other) noexcept : m_p(std::exchange(other.m_p, nullptr))
    {
    }
    ~velComPtr()
    {
        if (m_p != nullptr)
            m_p->Release();
    }
    velComPtr& operator=(velComPtr other) noexcept
    {
        std::swap(m_p, other.m_p);
        return *this;
    }

    T* operator->() const
    {
        return m_p;
    }
    T* Get() const
    {
        return m_p;
    }
    explicit operator bool() const
    {
        return m_p != nullptr;
    }
    /// For a call that answers an interface; what was owned is given back first.
    T** Receive()
    {
        *this = velComPtr();
        return &m_p;
    }
    void** ReceiveVoid()
    {
        return reinterpret_cast<void**>(Receive());
    }

private:
    T* m_p = nullptr;
};

class velBstr
{
public:
    velBstr() = default;
    explicit velBstr(std::wstring_view text)
        : m_bstr(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size())))
    {
    }
    velBstr(const velBstr&) = delete;
    velBstr& operator=(const velBstr&) = delete;
    ~velBstr()
    {
        ::SysFreeString(m_bstr);
    }

    BSTR Get() const
    {
        return m_bstr;
    }
    std::wstring_view View() const
    {
        return m_bstr == nullptr ? std::wstring_view() : std::wstring_view(m_bstr, ::SysStringLen(m_bstr));
    }
    BSTR* Receive()
    {
        ::SysFreeString(m_bstr);
        m_bstr = nullptr;
        return &m_bstr;
    }

private:
    BSTR m_bstr = nullptr;
};

class velVariant : public VARIANT
{
public:
    velVariant()
    {
        ::VariantInit(this);
    }
    explicit velVariant(std::wstring_view text) : velVariant()
    {
        vt = VT_BSTR;
        bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    velVariant(const velVariant&) = delete;
    velVariant& operator=(const velVariant&) = delete;
    ~velVariant()
    {
        ::VariantClear(this);
    }
};
