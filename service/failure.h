// Why a request is refused.
#pragma once

#include <stdexcept>
#include <string>

namespace svc
{
/// Becomes the reply's status and its body, one sentence. Nothing was changed.
struct Failure : std::runtime_error
{
    Failure(int httpStatus, const std::string& sentence) : std::runtime_error(sentence), status(httpStatus)
    {
    }
    int status;
};
} // namespace svc
