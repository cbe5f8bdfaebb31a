#include "suite/rasko/program/credentials.h"

#include <windows.h>
#include <wincrypt.h>

#include <vector>

namespace
{
constexpr char Key[] = "Software\\Veltrix\\Rasko\\Credentials";
constexpr DWORD Largest = 16384;

DATA_BLOB Blob(const void* data, std::size_t size)
{
    return {static_cast<DWORD>(size),
            static_cast<BYTE*>(const_cast<void*>(data))}; // the system only reads it
}

class ProtectedData
{
public:
    ~ProtectedData()
    {
        if (blob.pbData)
        {
            SecureZeroMemory(blob.pbData, blob.cbData);
            LocalFree(blob.pbData);
        }
    }
    DATA_BLOB blob{};
};
} // namespace

namespace rasko
{
std::optional<Credentials> LoadCredentials(const std::string& service)
{
    std::vector<BYTE> stored(Largest);
    DWORD size = Largest;
    if (RegGetValueA(HKEY_CURRENT_USER, Key, service.c_str(), RRF_RT_REG_BINARY, nullptr, stored.data(),
                     &size) != ERROR_SUCCESS)
        return std::nullopt;
    DATA_BLOB in = Blob(stored.data(), size), entropy = Blob(service.data(), service.size());
    ProtectedData plain;
    if (!CryptUnprotectData(&in, nullptr, &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &plain.blob))
        return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(plain.blob.pbData), plain.blob.cbData);
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos)
        return std::nullopt;
    return Credentials{std::string(text.substr(0, end)), text.substr(end + 1)};
}

bool StoreCredentials(const std::string& service, const Credentials& credentials)
{
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, Key, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return false;
    LSTATUS result = ERROR_SUCCESS;
    if (credentials.user.empty())
        result = RegDeleteValueA(key, service.c_str());
    else
    {
        std::string text;
        const WipeAtEnd wipe(text);
        text.reserve(credentials.user.size() + 1 + credentials.password.View().size());
        text.append(credentials.user).append(1, '\0').append(credentials.password.View());
        DATA_BLOB in = Blob(text.data(), text.size()), entropy = Blob(service.data(), service.size());
        ProtectedData hidden;
        result =
            CryptProtectData(&in, L"Veltrix Rasko", &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                             &hidden.blob)
                ? RegSetValueExA(key, service.c_str(), 0, REG_BINARY, hidden.blob.pbData, hidden.blob.cbData)
                : static_cast<LSTATUS>(GetLastError());
    }
    RegCloseKey(key);
    return result == ERROR_SUCCESS || (credentials.user.empty() && result == ERROR_FILE_NOT_FOUND);
}
} // namespace rasko
