#pragma once

#include "suite/patients/store/patdefs.h"

#include <string>
#include <vector>

/// The keyword lists.
enum dbKeywordList
{
    dbKeywordsPatient = 0,
    dbKeywordsImage = 1
};

/// One keyword list, in the order in which the words were added. Add and Remove change this object; Save
/// stores what was added and removed, on top of whatever another process has stored meanwhile. A word with a
/// character that the code page does not have is given with a question mark in its place; it can be removed,
/// and is otherwise left as it is.
class VELPAT_API CKeywords
{
public:
    /// Reads a list. FALSE for an unknown list or when the database cannot be read; the object is then empty.
    BOOL Load(int nList);

    void MoveFirst()
    {
        m_nNext = 0;
    }
    int GetCount() const
    {
        return static_cast<int>(m_words.size());
    }
    /// The next keyword; FALSE behind the last.
    BOOL GetNext(CString& strKeyword);

    /// FALSE when the list holds the word in any letter case.
    BOOL Add(LPCTSTR pszKeyword);
    /// FALSE when the list does not hold the word (any letter case).
    BOOL Remove(LPCTSTR pszKeyword);

    /// Stores the changes in one transaction. Throws dbCException*.
    void Save();

private:
    int Find(LPCTSTR pszKeyword, const std::string& folded) const;

    struct Word
    {
        CString strText;    // for display
        std::string folded; // what the database knows it by
    };

    /// What Save will do, in the order in which it was asked for.
    struct Change
    {
        bool bAdded;
        CString strText;
        std::string folded;
    };

    int m_nList = -1;
    size_t m_nNext = 0;
    std::vector<Word> m_words;
    std::vector<Change> m_changes;
};
