#include "tests/mfcbase/thrown.h"

#include <afxcoll.h>

#include <gtest/gtest.h>

using mfctest::Thrown;

TEST(Arrays, GrowAndShrinkWithinTheirBounds)
{
    CStringArray array;
    for (const char* text : {"a", "b", "c", "d"})
    {
        array.Add(text);
    }
    array.RemoveAt(1, 2);
    EXPECT_EQ(array.Add(array[0]), 2) << "an element of its own while it grows";
    std::string joined;
    for (const CString& element : array)
    {
        joined += element.GetString();
    }
    EXPECT_EQ(joined, "ada");
    for (const INT_PTR bad : {INT_PTR(-1), INT_PTR(3)})
    {
        EXPECT_EQ(Thrown([&] { array.GetAt(bad); }), "CInvalidArgException");
        EXPECT_EQ(Thrown([&] { array.RemoveAt(bad); }), "CInvalidArgException");
    }
    EXPECT_EQ(Thrown([&] { array.RemoveAt(1, 3); }), "CInvalidArgException");
}
