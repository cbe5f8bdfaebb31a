// The user's name and password for a service, kept for this Windows user only.
#pragma once

#include "suite/rasko/transfer/serviceclient.h"

#include <optional>
#include <string>

namespace rasko
{
/// Kept below HKEY_CURRENT_USER, one value per service, protected by the system with the service's name bound
/// to it.
std::optional<Credentials> LoadCredentials(const std::string& service);
/// FALSE when the system could not protect or store them. Empty ones are forgotten.
bool StoreCredentials(const std::string& service, const Credentials& credentials);
} // namespace rasko
