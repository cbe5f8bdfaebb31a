#include "tests/mfcbase/thrown.h"

#include <gtest/gtest.h>

using mfctest::Thrown;

TEST(Archive, ReadsBackWhatItWroteWithAnyBuffer)
{
    for (const int bufferSize : {1, 4096, 1 << 20})
    {
        const std::string large(70000, 'y');
        CMemFile file;
        CArchive out(&file, CArchive::store, bufferSize);
        out << DWORD(0x01020304);
        out.Write(large.data(), 70000);
        out << DWORD(5);
        out.Close();
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.GetBufferPtr()), 5), "\x04\x03\x02\x01y");

        CArchive in(&file, CArchive::load, bufferSize);
        DWORD first = 0, last = 0;
        std::string read(70000, ' ');
        in >> first;
        EXPECT_EQ(in.Read(read.data(), 70000), 70000u);
        in >> last;
        EXPECT_TRUE(first == 0x01020304 && read == large && last == 5);
        EXPECT_EQ(Thrown([&] { in >> last; }), "CArchiveException");
        EXPECT_EQ(Thrown([&] { in << last; }), "CArchiveException");
    }
}
