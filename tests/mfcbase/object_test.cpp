#include "tests/mfcbase/thrown.h"

#include <gtest/gtest.h>

namespace
{

class Base : public CObject
{
    DECLARE_DYNAMIC(Base)
};
IMPLEMENT_DYNAMIC(Base, CObject)

class Derived : public Base
{
    DECLARE_DYNCREATE(Derived)
};
IMPLEMENT_DYNCREATE(Derived, Base)

class Stranger : public CObject
{
    DECLARE_DYNAMIC(Stranger)
};
IMPLEMENT_DYNAMIC(Stranger, CObject)

} // namespace

TEST(RuntimeClass, KnowsItsLine)
{
    Derived derived;
    EXPECT_TRUE(derived.IsKindOf(RUNTIME_CLASS(Derived)));
    EXPECT_TRUE(derived.IsKindOf(RUNTIME_CLASS(Base)));
    EXPECT_TRUE(derived.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(derived.IsKindOf(RUNTIME_CLASS(Stranger)));
    EXPECT_FALSE(Base().IsKindOf(RUNTIME_CLASS(Derived)));
    EXPECT_EQ(DYNAMIC_DOWNCAST(Derived, static_cast<CObject*>(&derived)), &derived);
    EXPECT_EQ(DYNAMIC_DOWNCAST(Stranger, static_cast<CObject*>(&derived)), nullptr);
    EXPECT_FALSE(Stranger().IsKindOf(RUNTIME_CLASS(Base)));
}

TEST(RuntimeClass, CreatesWhatCanBeCreated)
{
    const std::unique_ptr<CObject> object(RUNTIME_CLASS(Derived)->CreateObject());
    ASSERT_NE(object, nullptr);
    EXPECT_STREQ(object->GetRuntimeClass()->m_lpszClassName, "Derived");
    EXPECT_EQ(RUNTIME_CLASS(Base)->CreateObject(), nullptr);
}

TEST(Exceptions, TellTheUserWhatHappenedToWhichFile)
{
    char text[256];
    const CFileException full(CFileException::diskFull, ERROR_DISK_FULL, "d:\\x.kaz");
    ASSERT_TRUE(full.GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "The disk is full while accessing d:\\x.kaz.");
    const CArchiveException cut(CArchiveException::endOfFile);
    ASSERT_TRUE(cut.GetErrorMessage(text, 12));
    EXPECT_STREQ(text, "an unnamed ");
    ASSERT_TRUE(CMemoryException().GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "There is not enough memory.");
    EXPECT_FALSE(CUserException().GetErrorMessage(text, sizeof(text)));
    EXPECT_STREQ(text, "");
}
