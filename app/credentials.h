#pragma once

#include <afx.h>

#include <string>

/// User name and password of the record-sharing service. Kept in memory only, and overwritten there when they
/// are replaced or no longer needed.
class velCCredentials
{
public:
    velCCredentials() = default;
    ~velCCredentials()
    {
        Clear();
    }
    velCCredentials(const velCCredentials&) = delete;
    velCCredentials& operator=(const velCCredentials&) = delete;

    bool IsKnown() const
    {
        return !m_user.empty();
    }
    LPCTSTR GetUser() const
    {
        return m_user.c_str();
    }
    LPCTSTR GetPassword() const
    {
        return m_password.c_str();
    }

    void Set(LPCTSTR pszUser, LPCTSTR pszPassword)
    {
        Assign(m_user, pszUser);
        Assign(m_password, pszPassword);
    }
    void Clear()
    {
        Assign(m_user, "");
        Assign(m_password, "");
    }

private:
    /// Into memory of its own, so that no longer text stays behind where a shorter one has grown.
    static void Assign(std::string& text, LPCTSTR pszNew)
    {
        std::string next(pszNew);
        ::SecureZeroMemory(text.data(), text.size());
        text.swap(next);
        ::SecureZeroMemory(next.data(), next.size());
    }

    std::string m_user;
    std::string m_password;
};
