#include "tests/support/recordservice.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace
{

std::string Variable(const char* name)
{
    const char* value = std::getenv(name);
    if (!value || !*value)
        throw std::runtime_error(std::string(name) +
                                 " is not set: start this program with tools/with-service");
    return value;
}

std::string WindowsPath(std::string path)
{
    std::replace(path.begin(), path.end(), '/', '\\');
    return "Z:" + path;
}

// Of this machine's own programs.
void RunToEnd(std::string line)
{
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        throw std::runtime_error("cannot run " + line);
    WaitForSingleObject(process.hProcess, 30'000);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
}

} // namespace

namespace veltest
{

RecordService::RecordService() : m_host(Variable("VEL_SERVICE_HOST"))
{
    std::ifstream file(WindowsPath(Variable("VEL_SERVICE_CA")), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    const std::string pem = text.str();
    std::vector<BYTE> der(pem.size() + 1);
    auto size = static_cast<DWORD>(der.size());
    m_store = CertOpenStore(CERT_STORE_PROV_SYSTEM_A, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, "ROOT");
    if (!CryptStringToBinaryA(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, der.data(), &size, nullptr,
                              nullptr) ||
        !m_store ||
        !CertAddEncodedCertificateToStore(m_store, X509_ASN_ENCODING, der.data(), size,
                                          CERT_STORE_ADD_REPLACE_EXISTING, &m_authority))
        throw std::runtime_error("the service's authority cannot be trusted");
    // Other processes see what has been committed.
    CertControlStore(m_store, 0, CERT_STORE_CTRL_COMMIT, nullptr);
}

RecordService::~RecordService()
{
    CertDeleteCertificateFromStore(m_authority);
    CertCloseStore(m_store, 0);
}

void RecordService::Administer(const std::string& arguments) const
{
    RunToEnd("\"" + WindowsPath(Variable("VEL_SERVICE_PROGRAM")) + "\" " + arguments + " --data " +
             Variable("VEL_SERVICE_DATA"));
}

void RecordService::Kill() const
{
    RunToEnd("Z:\\bin\\sh -c \"kill -9 `cat $VEL_SERVICE_DATA/pid`\"");
}

} // namespace veltest
