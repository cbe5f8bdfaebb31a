// What the tests of zips share.
#pragma once

#include "archive/zip/parallel.h"
#include "archive/zip/unzipper.h"
#include "archive/zip/zipper.h"
#include "tests/archive/memoryfilesystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <system_error>

// The zip library keeps 80 bytes when it cannot write an entry's header; a save that fails so is over anyway.
extern "C" const char* __lsan_default_suppressions();
extern "C" inline const char* __lsan_default_suppressions()
{
    return "leak:zipOpenNewFileInZip4_64";
}

inline std::string Noise(std::size_t size, std::uint32_t state = 12345)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes)
    {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

// Parameter: the number of workers. None may be left when a test is over.
class ZipTest : public testing::TestWithParam<unsigned>
{
protected:
    ZipTest()
    {
        parallel.workers = GetParam();
        parallel.start = [this](const std::function<void()>& body) {
            if (startable-- <= 0)
                throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
            return std::thread([this, body] {
                ++running;
                body();
                --running;
            });
        };
    }
    void TearDown() override
    {
        EXPECT_EQ(running, 0);
    }
    bool IsSerial() const
    {
        return GetParam() == 1;
    }

    // Goes on, and keeps what it is told.
    CZipper::Progress Noting()
    {
        return [this](int percent, const std::string&) {
            percents.push_back(percent);
            return true;
        };
    }

    MemoryFileSystem files;
    arc::Parallel parallel;
    std::vector<int> percents;
    int startable = 1'000'000; // threads
    std::atomic<int> running = 0;
};
