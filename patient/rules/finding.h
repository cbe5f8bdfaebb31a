// What a rule of the patient pages answers.
#pragma once

#include <string>

namespace pat
{

/// The outcome of a check. A failed one names the message to show (0: it fails without one), the argument of
/// the message's marker "<1>", and the control at fault (0: none).
struct Finding
{
    bool bPassed = true;
    unsigned nMessage = 0;
    unsigned nControl = 0;
    std::string strArgument;

    static Finding Failed(unsigned nMessage, unsigned nControl, std::string strArgument = {})
    {
        return {false, nMessage, nControl, std::move(strArgument)};
    }
};

} // namespace pat
