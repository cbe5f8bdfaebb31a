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
            words.push_back({query.Text(0), std::string(query.Utf8(1))});
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

int CKeywords::Find(const std::string& folded) const
{
    const auto found =
        std::find_if(m_words.begin(), m_words.end(), [&](const Word& word) { return word.folded == folded; });
    return found != m_words.end() ? static_cast<int>(found - m_words.begin()) : -1;
}

BOOL CKeywords::Add(LPCTSTR pszKeyword)
{
    const std::string folded = dbFold(pszKeyword);
    if (Find(folded) >= 0)
        return FALSE;
    m_words.push_back({pszKeyword, folded});
    m_changes.push_back({true, pszKeyword, folded});
    return TRUE;
}

BOOL CKeywords::Remove(LPCTSTR pszKeyword)
{
    const std::string folded = dbFold(pszKeyword);
    const int nIndex = Find(folded);
    if (nIndex < 0)
        return FALSE;
    m_words.erase(m_words.begin() + nIndex);
    if (m_nNext > static_cast<size_t>(nIndex))
        --m_nNext;
    m_changes.push_back({false, pszKeyword, folded});
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
    m_changes.clear();
}
