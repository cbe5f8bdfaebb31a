// The host's command line. Plain C++.
#pragma once

#include <string>
#include <vector>

struct hostSOptions
{
    // The practice's folder; empty for the user's own sample practice.
    std::string practice;
    // Number of patients of a practice to be made, 0 when none was asked for.
    int patients = 0;
};

// The largest practice that the sample generator makes.
constexpr int kMostSamplePatients = 1000000;

// Reads the arguments (without the program's name). False, with the offending argument in `error`, for anything
// that is not understood; the options are then not to be used.
bool hostParseCommandLine(const std::vector<std::string>& arguments, hostSOptions& options, std::string& error);
