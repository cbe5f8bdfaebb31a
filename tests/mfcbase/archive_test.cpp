#include "tests/mfcbase/thrown.h"

#include <afx.h>

#include <gtest/gtest.h>

using mfctest::ArchiveError;
using mfctest::Thrown;

namespace
{

// Stores, and answers the bytes.
template <class Call> std::string Stored(Call call, int bufferSize = 4096)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store, bufferSize);
    call(archive);
    archive.Close();
    const auto length = static_cast<std::size_t>(file.GetLength());
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), length};
}

// What loading from the bytes throws.
template <class Call> std::string Loading(std::string bytes, Call call, int bufferSize = 4096)
{
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load, bufferSize);
    return Thrown([&] { call(archive); });
}

} // namespace

TEST(Archive, WritesTheDocumentedBytes)
{
    EXPECT_EQ(Stored([](CArchive& ar) { ar << BYTE(1) << WORD(2) << DWORD(3) << CString("ab") << true; }),
              std::string("\x01\x02\0\x03\0\0\0\x02"
                          "ab\x01",
                          11));
    const std::string medium = Stored([](CArchive& ar) { ar << CString('x', 255); });
    EXPECT_EQ(medium.substr(0, 4), std::string("\xFF\xFF\0x", 4));
    const std::string large = Stored([](CArchive& ar) { ar << CString('x', 0xFFFE); });
    EXPECT_EQ(large.substr(0, 8), std::string("\xFF\xFF\xFF\xFE\xFF\0\0x", 8));
}

TEST(Archive, ReadsBackWhatItWroteWithAnyBuffer)
{
    for (const int bufferSize : {1, 128, 4096, 1 << 20})
    {
        const CString big('y', 70000);
        const std::string bytes = Stored(
            [&](CArchive& ar) {
                ar << -5 << 1.5 << 2.5f << LONGLONG(1) << CString() << big;
                ar.WriteCount(0xFFFF);
                ar.Write(big, 70000);
            },
            bufferSize);
        int i = 0;
        double d = 0;
        float f = 0;
        LONGLONG l = 0;
        CString empty("x");
        CString text;
        std::string raw(70000, ' ');
        EXPECT_EQ(Loading(
                      bytes,
                      [&](CArchive& ar) {
                          ar >> i >> d >> f >> l >> empty >> text;
                          EXPECT_EQ(ar.ReadCount(), 0xFFFFu);
                          EXPECT_EQ(ar.Read(raw.data(), 70001 - 1), 70000u);
                          EXPECT_EQ(ar.Read(raw.data(), 1), 0u);
                      },
                      bufferSize),
                  "");
        EXPECT_TRUE(i == -5 && d == 1.5 && f == 2.5f && l == 1 && empty.IsEmpty() && text == big);
        EXPECT_EQ(raw, std::string(70000, 'y'));
    }
}

TEST(Archive, LeavesTheFileWhereLoadingStopped)
{
    std::string bytes = Stored([](CArchive& ar) { ar << 1 << 2; }) + "tail";
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load);
    int value = 0;
    archive >> value;
    archive.Close();
    EXPECT_EQ(file.GetPosition(), 4u);
}

TEST(Archive, EveryCutIsAnEndOfFile)
{
    const auto store = [](CArchive& ar) {
        ar.WriteCount(2);
        ar << CString("one") << CString('z', 300) << 7;
    };
    const auto load = [](CArchive& ar) {
        ar.ReadCount();
        CString one;
        CString other;
        int value = 0;
        ar >> one >> other >> value;
    };
    const std::string whole = Stored(store);
    EXPECT_EQ(Loading(whole, load), "");
    for (std::size_t length = 0; length < whole.size(); ++length)
    {
        EXPECT_EQ(Loading(whole.substr(0, length), load), ArchiveError(CArchiveException::endOfFile)) << length;
    }
}

TEST(Archive, LengthsThatLieTakeNoMemory)
{
    const auto loadText = [](CArchive& ar) {
        CString text("kept");
        EXPECT_NE(Thrown([&] { ar >> text; }), "");
        EXPECT_STREQ(text, "kept");
        throw new CUserException;
    };
    for (const std::string& bytes : {std::string("\xFF\xFF\xFF\xFF\xFF\xFF\x7Fzz", 9),
                                     std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFFzz", 9), std::string("\xFF\xFE\xFFzz", 5)})
    {
        EXPECT_EQ(Loading(bytes, loadText), "CUserException");
    }
}

TEST(Archive, KeepsToItsDirection)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    int value = 0;
    EXPECT_EQ(Thrown([&] { archive >> value; }), ArchiveError(CArchiveException::writeOnly));
    EXPECT_EQ(Loading("1234", [](CArchive& ar) { ar << 1; }), ArchiveError(CArchiveException::readOnly));
}
