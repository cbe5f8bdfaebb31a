#include "suite/patients/records/dbkeywords.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtext.h"
#include "suite/patients/store/dbtransaction.h"

#include <algorithm>

BOOL CKeywords::Load(int nList)
{
    *this = CKeywords();
    if (nList != dbKeywordsPatient && nList != dbKeywordsImage)
        return FALSE;
    try
    {
        std::vector<Word> words;
        dbCStatement query("SELECT word, wordKey FROM keywords WHERE list = ? ORDER BY id");
        query.Bind(nList);
        while (query.Step())
            words.push_back({dbFromUtf8ForDisplay(query.Utf8(0)).c_str(), std::string(query.Utf8(1))});
        m_words = std::move(words);
        m_nList = nList;
        return TRUE;
    }
    catch (CException* e)
    {
        e->Delete();
        return FALSE;
    }
}

BOOL CKeywords::GetNext(CString& strKeyword)
{
    if (m_nNext >= m_words.size())
        return FALSE;
    strKeyword = m_words[m_nNext++].strText;
    return TRUE;
}

int CKeywords::Find(LPCTSTR pszKeyword, const std::string& folded) const
{
    // By its text first: that of a word which was not converted whole folds to another word.
    auto found = std::find_if(m_words.begin(), m_words.end(),
                              [&](const Word& word) { return word.strText == pszKeyword; });
    if (found == m_words.end())
        found = std::find_if(m_words.begin(), m_words.end(),
                             [&](const Word& word) { return word.folded == folded; });
    return found != m_words.end() ? static_cast<int>(found - m_words.begin()) : -1;
}

BOOL CKeywords::Add(LPCTSTR pszKeyword)
{
    const std::string folded = dbFold(pszKeyword);
    if (Find(pszKeyword, folded) >= 0)
        return FALSE;
    m_words.push_back({pszKeyword, folded});
    m_changes.push_back({true, pszKeyword, folded});
    return TRUE;
}

BOOL CKeywords::Remove(LPCTSTR pszKeyword)
{
    const int nIndex = Find(pszKeyword, dbFold(pszKeyword));
    if (nIndex < 0)
        return FALSE;
    const auto word = m_words.begin() + nIndex;
    m_changes.push_back({false, word->strText, word->folded});
    m_words.erase(word);
    if (m_nNext > static_cast<size_t>(nIndex))
        --m_nNext;
    return TRUE;
}

void CKeywords::Save()
{
    if (m_nList < 0)
        dbCException::Throw(dbErrInvalid);
    dbCTransaction transaction;
    dbCStatement insert("INSERT INTO keywords (list, word, wordKey) VALUES (?, ?, ?) ON CONFLICT DO NOTHING");
    dbCStatement remove("DELETE FROM keywords WHERE list = ? AND wordKey = ?");
    for (const Change& change : m_changes)
    {
        if (change.bAdded)
            insert.Bind(m_nList).Bind(change.strText).BindUtf8(change.folded).Run();
        else
            remove.Bind(m_nList).BindUtf8(change.folded).Run();
    }
    transaction.Commit();
    m_changes.clear(); // for good: whoever rolls back a transaction around it undoes what the user did
}
