#include "tests/mfcbase/thrown.h"

#include <afxcoll.h>
#include <afxdisp.h>

#include <gtest/gtest.h>

#include <limits>

using mfctest::ArchiveError;
using mfctest::Thrown;

namespace
{

class Item : public CObject
{
    DECLARE_SERIAL(Item)
public:
    void Serialize(CArchive& ar) override
    {
        if (ar.IsStoring())
        {
            ar << m_strName << m_pNext;
        }
        else
        {
            m_nSchema = ar.GetObjectSchema();
            CObject* next = nullptr;
            ar >> m_strName >> next;
            m_pNext = DYNAMIC_DOWNCAST(Item, next);
        }
    }
    CString m_strName;
    Item* m_pNext = nullptr; // not owned
    UINT m_nSchema = 0;
};
IMPLEMENT_SERIAL(Item, CObject, 3)

class Other : public CObject
{
    DECLARE_SERIAL(Other)
};
IMPLEMENT_SERIAL(Other, CObject, 1)

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
                ar << -5 << 1.5 << 2.5f << LONGLONG(1) << CString() << big << COleDateTime(2026, 3, 4, 5, 6, 7);
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
        COleDateTime date;
        std::string raw(70000, ' ');
        EXPECT_EQ(Loading(
                      bytes,
                      [&](CArchive& ar) {
                          ar >> i >> d >> f >> l >> empty >> text >> date;
                          EXPECT_EQ(ar.ReadCount(), 0xFFFFu);
                          EXPECT_EQ(ar.Read(raw.data(), 70001 - 1), 70000u);
                          EXPECT_EQ(ar.Read(raw.data(), 1), 0u);
                      },
                      bufferSize),
                  "");
        EXPECT_TRUE(i == -5 && d == 1.5 && f == 2.5f && l == 1 && empty.IsEmpty() && text == big);
        EXPECT_EQ(date, COleDateTime(2026, 3, 4, 5, 6, 7));
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
        CStringArray texts;
        texts.Add("one");
        texts.Add(CString('z', 300));
        texts.Serialize(ar);
        ar << 7;
    };
    const auto load = [](CArchive& ar) {
        CStringArray texts;
        texts.Serialize(ar);
        int value = 0;
        ar >> value;
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
    const auto loadArray = [](CArchive& ar) { CDWordArray().Serialize(ar); };
    EXPECT_EQ(Loading(std::string("\xFF\xFF\xFF\xFF\xFF\x7F\1\0\0\0", 10), loadArray),
              ArchiveError(CArchiveException::endOfFile));
}

TEST(Archive, KeepsToItsDirection)
{
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    int value = 0;
    EXPECT_EQ(Thrown([&] { archive >> value; }), ArchiveError(CArchiveException::writeOnly));
    EXPECT_EQ(Loading("1234", [](CArchive& ar) { ar << 1; }), ArchiveError(CArchiveException::readOnly));
}

TEST(Archive, StoresEachObjectOnce)
{
    Item first;
    Item second;
    first.m_strName = "first";
    first.m_pNext = &second;
    second.m_pNext = &first; // a ring
    const std::string bytes = Stored([&](CArchive& ar) { ar << &first << static_cast<CObject*>(nullptr) << &second; });

    EXPECT_EQ(Loading(bytes,
                      [](CArchive& ar) {
                          Item* loaded = nullptr;
                          CObject* nothing = nullptr;
                          Item* again = nullptr;
                          ar >> loaded >> nothing >> again;
                          const std::unique_ptr<Item> one(loaded);
                          const std::unique_ptr<Item> other(again);
                          EXPECT_STREQ(one->m_strName, "first");
                          EXPECT_EQ(one->m_nSchema, 3u);
                          EXPECT_EQ(one->m_pNext, again);
                          EXPECT_EQ(again->m_pNext, loaded);
                          EXPECT_EQ(nothing, nullptr);
                      }),
              "");
}

TEST(Archive, RefusesForeignObjects)
{
    const auto load = [](CArchive& ar) {
        Item* item = nullptr;
        ar >> item;
        delete item;
    };
    const std::string good = Stored([](CArchive& ar) {
        const Item item;
        ar << &item;
    });
    Other other;
    std::string badSchema = good;
    badSchema[2] = 9;
    std::string unknown = good;
    unknown[6] = 'X';
    struct Case
    {
        const char* what;
        std::string bytes;
        int cause;
    };
    for (const Case& c : {
             Case{"another class", Stored([&](CArchive& ar) { ar << &other; }), CArchiveException::badClass},
             Case{"unknown class", unknown, CArchiveException::badClass},
             Case{"other schema", badSchema, CArchiveException::badSchema},
             Case{"over-long name", std::string("\xFF\xFF\3\0\xFF\x7F", 6), CArchiveException::badClass},
             Case{"object never met", std::string("\5\0", 2), CArchiveException::badIndex},
             Case{"class never met", std::string("\1\x80", 2), CArchiveException::badIndex},
             Case{"big index", std::string("\xFF\x7F\xFF\xFF\xFF\xFF", 6), CArchiveException::badIndex},
         })
    {
        EXPECT_EQ(Loading(c.bytes, load), ArchiveError(c.cause)) << c.what;
    }

    // Objects nested without end: a class, then each object's next one again of that class.
    std::string nested = good.substr(0, good.size() - 2);
    for (int i = 0; i < 100000; ++i)
    {
        nested += std::string("\1\x80\0", 3);
    }
    EXPECT_EQ(Loading(nested, load), ArchiveError(CArchiveException::badIndex));
}

TEST(Archive, ADateThatIsNoneBecomesInvalid)
{
    const auto load = [](LONG status, double value) {
        COleDateTime date;
        EXPECT_EQ(Loading(Stored([&](CArchive& ar) { ar << status << value; }), [&](CArchive& ar) { ar >> date; }), "");
        return date.GetStatus();
    };
    EXPECT_EQ(load(0, 45000.5), COleDateTime::valid);
    EXPECT_EQ(load(2, 45000.5), COleDateTime::null);
    EXPECT_EQ(load(77, 45000.5), COleDateTime::invalid);
    EXPECT_EQ(load(0, 1e300), COleDateTime::invalid);
    EXPECT_EQ(load(0, std::numeric_limits<double>::quiet_NaN()), COleDateTime::invalid);
}
