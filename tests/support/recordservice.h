#pragma once

#include <windows.h>
#include <wincrypt.h>

#include <string>

namespace veltest
{

// The record-sharing service that tools/with-service runs beside the test program. While an object lives,
// this Windows user trusts the service's authority. Accounts: "anna" ("first secret") and "bert" ("second
// secret").
class RecordService
{
public:
    // Throws std::runtime_error when the program was not started by tools/with-service.
    RecordService();
    ~RecordService();
    RecordService(const RecordService&) = delete;
    RecordService& operator=(const RecordService&) = delete;

    // "localhost:port", as the setting RASKOTARGET has it.
    const std::string& Host() const
    {
        return m_host;
    }

    // Runs one of the administrator's commands ("add-message", {"--text", "..."}); arguments without
    // quotation marks. Returns when it has ended.
    void Administer(const std::string& arguments) const;

    // Ends the service as a crash would; tools/with-service starts it again at once.
    void Kill() const;

private:
    std::string m_host;
    HCERTSTORE m_store = nullptr;
    PCCERT_CONTEXT m_authority = nullptr;
};

} // namespace veltest
