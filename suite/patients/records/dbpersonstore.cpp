#include "suite/patients/records/dbpersonstore.h"

namespace
{
void SaveAddresses(__int64 nRow, const dbCAddresses& addresses)
{
    dbCStatement insert(
        "INSERT INTO addresses (person, position, type, company, street, city, state, postalCode, country)"
        " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    int nPosition = 0;
    for (const dbCAddress& address : addresses)
    {
        insert.Bind(nRow)
            .Bind(nPosition++)
            .Bind(address.GetType())
            .Bind(address.GetCompany())
            .Bind(address.GetStreet());
        insert.Bind(address.GetCity())
            .Bind(address.GetState())
            .Bind(address.GetPostalCode())
            .Bind(address.GetCountry());
        insert.Run();
    }
}

void SavePhones(__int64 nRow, const dbCPhones& phones)
{
    dbCStatement insert("INSERT INTO phones (person, position, number, type) VALUES (?, ?, ?, ?)");
    int nPosition = 0;
    for (const dbCPhone& phone : phones)
        insert.Bind(nRow).Bind(nPosition++).Bind(phone.GetNumber()).Bind(phone.GetType()).Run();
}
} // namespace

__int64 dbFindPerson(LPCTSTR pszGUID)
{
    dbCStatement query("SELECT id FROM persons WHERE guid = ?");
    query.Bind(pszGUID);
    return query.Step() ? query.Int64(0) : 0;
}

dbCPerson dbLoadPerson(__int64 nRow)
{
    dbCPerson person;
    dbCStatement query(
        "SELECT guid, title, firstName, lastName, nickname, salutation, email, notes, birthDate, gender"
        " FROM persons WHERE id = ?");
    query.Bind(nRow);
    if (!query.Step())
        dbCException::Throw(dbErrNotFound);
    person.SetPersonGUID(query.Text(0));
    person.SetTitle(query.Text(1));
    person.SetFirstname(query.Text(2));
    person.SetLastname(query.Text(3));
    person.SetNickname(query.Text(4));
    person.SetSalutation(query.Text(5));
    person.SetEmail(query.Text(6));
    person.SetNotes(query.Text(7));
    person.SetBirthdate(query.Date(8));
    person.SetGender(query.Int(9));

    dbCStatement addresses("SELECT type, company, street, city, state, postalCode, country FROM addresses"
                           " WHERE person = ? ORDER BY position");
    addresses.Bind(nRow);
    while (addresses.Step())
    {
        dbCAddress address;
        address.SetType(addresses.Text(0));
        address.SetCompany(addresses.Text(1));
        address.SetStreet(addresses.Text(2));
        address.SetCity(addresses.Text(3));
        address.SetState(addresses.Text(4));
        address.SetPostalCode(addresses.Text(5));
        address.SetCountry(addresses.Text(6));
        person.GetAddresses().Add(address);
    }
    dbCStatement phones("SELECT number, type FROM phones WHERE person = ? ORDER BY position");
    phones.Bind(nRow);
    while (phones.Step())
        person.GetPhones().Add(dbCPhone(phones.Text(0), phones.Text(1)));
    return person;
}

__int64 dbSavePerson(__int64 nRow, const dbCPerson& person)
{
    const auto bindFields = [&](dbCStatement& statement) {
        statement.Bind(person.GetTitle()).Bind(person.GetFirstname()).Bind(person.GetLastname());
        statement.Bind(person.GetNickname()).Bind(person.GetSalutation()).Bind(person.GetEmail());
        statement.Bind(person.GetNotes()).BindDate(person.GetBirthdate()).Bind(person.GetGender());
    };
    if (nRow == 0)
    {
        dbCStatement insert(
            "INSERT INTO persons (title, firstName, lastName, nickname, salutation, email, notes,"
            " birthDate, gender, guid, id) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        bindFields(insert);
        nRow = dbNextNumber(dbCounter::Persons);
        insert.Bind(person.GetPersonGUID()).Bind(nRow).Run();
    }
    else
    {
        dbCStatement update(
            "UPDATE persons SET title = ?, firstName = ?, lastName = ?, nickname = ?, salutation = ?,"
            " email = ?, notes = ?, birthDate = ?, gender = ? WHERE id = ?");
        bindFields(update);
        update.Bind(nRow).Run();
        dbCStatement("DELETE FROM addresses WHERE person = ?").Bind(nRow).Run();
        dbCStatement("DELETE FROM phones WHERE person = ?").Bind(nRow).Run();
    }
    SaveAddresses(nRow, person.GetAddresses());
    SavePhones(nRow, person.GetPhones());
    return nRow;
}

void dbDeletePerson(__int64 nRow)
{
    dbCStatement("DELETE FROM persons WHERE id = ?").Bind(nRow).Run();
}
