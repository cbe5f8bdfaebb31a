// The service's own certificate authority and its certificate.
#pragma once

#include <string>
#include <vector>

namespace svc
{
struct CertificateFiles
{
    std::string authority;   ///< "ca.pem": what clients are to trust
    std::string certificate; ///< "server.pem": certificate and authority
    std::string key;         ///< "server.key", readable by the service's user only
};

/// The files in a folder. An authority is made when there is none; a certificate for the names (DNS) when
/// there is none, when the one there is for other names, or when it ends within 30 days. Throws
/// std::runtime_error.
CertificateFiles EnsureCertificates(const std::string& folder, const std::vector<std::string>& names);
} // namespace svc
