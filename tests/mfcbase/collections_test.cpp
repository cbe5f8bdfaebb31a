#include "tests/mfcbase/thrown.h"

#include <afxcoll.h>

#include <gtest/gtest.h>

using mfctest::Thrown;

namespace
{

std::string Joined(const CStringArray& array)
{
    std::string text;
    for (const CString& element : array)
    {
        text += element.GetString();
        text += '|';
    }
    return text;
}

} // namespace

TEST(Arrays, GrowInsertAndRemove)
{
    CStringArray array;
    EXPECT_EQ(array.Add("b"), 0);
    array.InsertAt(0, "a");
    array.SetAtGrow(3, "d");
    EXPECT_EQ(Joined(array), "a|b||d|");
    array.InsertAt(6, "g", 2);
    EXPECT_EQ(Joined(array), "a|b||d|||g|g|");
    array.RemoveAt(2);
    array.RemoveAt(3, 4);
    EXPECT_EQ(Joined(array), "a|b|d|");
    EXPECT_EQ(array.Append(array), 3);
    EXPECT_EQ(Joined(array), "a|b|d|a|b|d|");
    array.InsertAt(1, &array);
    EXPECT_EQ(array.GetUpperBound(), 11);
    array.Add(array[0]); // an element of its own while it grows
    EXPECT_STREQ(array[12], "a");
}

TEST(Arrays, RefuseBadIndexes)
{
    CDWordArray array;
    array.SetSize(3);
    for (const INT_PTR bad : {INT_PTR(-1), INT_PTR(3)})
    {
        EXPECT_EQ(Thrown([&] { array.GetAt(bad); }), "CInvalidArgException");
        EXPECT_EQ(Thrown([&] { array.SetAt(bad, 1); }), "CInvalidArgException");
        EXPECT_EQ(Thrown([&] { array.RemoveAt(bad); }), "CInvalidArgException");
    }
    EXPECT_EQ(Thrown([&] { array.RemoveAt(1, 3); }), "CInvalidArgException");
    EXPECT_EQ(Thrown([&] { array.SetSize(-1); }), "CInvalidArgException");
}

TEST(Lists, KeepTheirPositions)
{
    CStringList list;
    const POSITION b = list.AddTail("b");
    list.AddHead("a");
    list.AddTail("d");
    list.InsertAfter(b, "c");
    list.InsertBefore(b, "a2");
    std::string forward;
    for (POSITION at = list.GetHeadPosition(); at != nullptr;)
    {
        forward += list.GetNext(at).GetString();
    }
    EXPECT_EQ(forward, "aa2bcd");
    list.RemoveAt(b);
    std::string backward;
    for (POSITION at = list.GetTailPosition(); at != nullptr;)
    {
        backward += list.GetPrev(at).GetString();
    }
    EXPECT_EQ(backward, "dca2a");
    EXPECT_STREQ(list.GetAt(list.FindIndex(2)), "c");
    EXPECT_EQ(list.FindIndex(4), nullptr);
    EXPECT_EQ(list.Find("x"), nullptr);
    EXPECT_STREQ(list.RemoveHead(), "a");
    list.RemoveAll();
    EXPECT_EQ(Thrown([&] { list.RemoveHead(); }), "CInvalidArgException");
}

TEST(Maps, LookUpAndVisitEveryEntry)
{
    CMapStringToString map;
    map["b"] = "2";
    map.SetAt("a", "1");
    map.SetAt("b", "3");
    CString value;
    EXPECT_FALSE(map.Lookup("c", value));
    std::string all;
    for (POSITION at = map.GetStartPosition(); at != nullptr;)
    {
        CString key;
        map.GetNextAssoc(at, key, value);
        all += std::string(key) + '=' + value.GetString() + ' ';
    }
    EXPECT_EQ(all, "a=1 b=3 ");
    EXPECT_TRUE(map.RemoveKey("a"));
    EXPECT_FALSE(map.RemoveKey("a"));
}
