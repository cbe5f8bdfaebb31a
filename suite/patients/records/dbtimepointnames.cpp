#include "suite/patients/records/dbtimepointnames.h"

#include "suite/patients/store/dbcore.h"
#include "suite/patients/store/dbtransaction.h"

void dbCTimepointNames::Load()
{
    dbTList<Name> names;
    dbCStatement query("SELECT id, name FROM timepointNames ORDER BY position");
    while (query.Step())
        names.Add({query.Int64(0), query.TextForDisplay(1)});
    m_names = names;
}

void dbCTimepointNames::Add(LPCTSTR pszName)
{
    if (pszName == nullptr || *pszName == '\0')
        dbCException::Throw(dbErrInvalid);
    dbCTransaction transaction;
    dbCStatement("INSERT INTO timepointNames (position, name)"
                 " SELECT coalesce(max(position), 0) + 1, ? FROM timepointNames WHERE true"
                 " ON CONFLICT (name) DO NOTHING")
        .Bind(pszName)
        .Run();
    transaction.Commit();
    Load();
}

void dbCTimepointNames::RemoveAt(int nIndex)
{
    dbCTransaction transaction;
    dbCStatement("DELETE FROM timepointNames WHERE id = ?").Bind(m_names.GetAt(nIndex).nRow).Run();
    transaction.Commit();
    Load();
}

void dbCTimepointNames::MoveUp(int nIndex)
{
    Exchange(nIndex, "SELECT n.id, n.position, m.position FROM timepointNames m LEFT JOIN timepointNames n"
                     " ON n.position < m.position WHERE m.id = ? ORDER BY n.position DESC LIMIT 1");
}

void dbCTimepointNames::MoveDown(int nIndex)
{
    Exchange(nIndex, "SELECT n.id, n.position, m.position FROM timepointNames m LEFT JOIN timepointNames n"
                     " ON n.position > m.position WHERE m.id = ? ORDER BY n.position LIMIT 1");
}

void dbCTimepointNames::Exchange(int nIndex, const char* pszNeighbour)
{
    const Name& moved = m_names.GetAt(nIndex);
    dbCTransaction transaction;
    dbCStatement neighbour(pszNeighbour);
    if (!neighbour.Bind(moved.nRow).Step())
        dbCException::Throw(dbErrChangedElsewhere, moved.strName);
    if (!neighbour.IsNull(0))
    {
        dbCStatement place("UPDATE timepointNames SET position = ? WHERE id = ?");
        place.Bind(neighbour.Int64(2)).Bind(neighbour.Int64(0)).Run();
        place.Bind(neighbour.Int64(1)).Bind(moved.nRow).Run();
    }
    transaction.Commit();
    Load();
}
