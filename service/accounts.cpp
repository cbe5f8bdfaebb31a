#include "service/accounts.h"

#include "service/failure.h"
#include "service/secrets.h"
#include "service/shareddocument.h"
#include "service/text.h"

#include <pugixml.hpp>

#include <sstream>

namespace
{
constexpr std::int64_t SessionLife = 12LL * 60 * 60 * 1000;
constexpr int FreeFailures = 10;
constexpr std::int64_t FailurePause = 60LL * 1000;
constexpr std::size_t FailuresKept = 10000;
constexpr std::size_t LongestName = 200, LongestPassword = 1000;

svc::Account ReadAccount(const svc::Statement& row)
{
    return {row.Int(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Text(5), row.Int(6)};
}
} // namespace

namespace svc
{
void Accounts::Add(const Account& account, const std::string& password)
{
    for (const std::string& text : {account.name, account.email, account.last, account.first})
        if (text.size() > LongestName || !IsCleanText(text))
            throw Failure(400, "A name is too long or holds characters that cannot be shown.");
    if (account.name.empty() || account.email.find('@') == std::string::npos)
        throw Failure(400, "An account needs a name and an e-mail address.");
    if (password.empty() || password.size() > LongestPassword)
        throw Failure(400, "A password has 1 to 1000 bytes.");
    const std::string hash = HashPassword(password);
    Transaction transaction(m_database);
    if (FindAccount(account.name, true, true) || FindAccount(account.email, true, true))
        throw Failure(409, "There is an account of this name or e-mail address already.");
    Statement(m_database,
              "INSERT INTO accounts (guid, name, email, lastName, firstName, password, quota)"
              " VALUES (?, ?, ?, ?, ?, ?, ?)",
              NewGuid(), account.name, account.email, account.last, account.first, hash, account.quota)
        .Run();
    transaction.Commit();
}

void Accounts::SetPassword(const std::string& name, const std::string& password)
{
    if (password.empty() || password.size() > LongestPassword)
        throw Failure(400, "A password has 1 to 1000 bytes.");
    const std::string hash = HashPassword(password);
    Transaction transaction(m_database);
    Statement(m_database, "UPDATE accounts SET password = ? WHERE name = ?", hash, name).Run();
    if (m_database.Changes() == 0)
        throw Failure(404, "There is no account of this name.");
    Statement(m_database, "DELETE FROM sessions WHERE account = (SELECT id FROM accounts WHERE name = ?)",
              name)
        .Run();
    transaction.Commit();
}

void Accounts::Remove(const std::string& name)
{
    Transaction transaction(m_database);
    Statement(m_database, "DELETE FROM accounts WHERE name = ?", name).Run();
    if (m_database.Changes() == 0)
        throw Failure(404, "There is no account of this name.");
    transaction.Commit();
}

std::vector<Account> Accounts::List()
{
    const auto lock = m_database.Lock();
    std::vector<Account> accounts;
    Statement query(m_database,
                    "SELECT id, guid, name, email, lastName, firstName, quota FROM accounts ORDER BY name");
    while (query.Step())
        accounts.push_back(ReadAccount(query));
    return accounts;
}

void Accounts::AddMessage(const Message& message)
{
    for (const std::string& text : {message.text, message.link, message.linkname})
        if (!IsCleanText(text))
            throw Failure(400, "A message holds characters that cannot be shown.");
    Transaction transaction(m_database);
    if (message.account.empty())
        Statement(m_database,
                  "INSERT INTO messages (account, text, link, linkname, action) VALUES (NULL, ?, ?, ?, ?)",
                  message.text, message.link, message.linkname, message.action)
            .Run();
    else
    {
        Statement(m_database,
                  "INSERT INTO messages (account, text, link, linkname, action)"
                  " SELECT id, ?, ?, ?, ? FROM accounts WHERE name = ?",
                  message.text, message.link, message.linkname, message.action, message.account)
            .Run();
        if (m_database.Changes() == 0)
            throw Failure(404, "There is no account of this name.");
    }
    transaction.Commit();
}

std::vector<Message> Accounts::Messages()
{
    const auto lock = m_database.Lock();
    std::vector<Message> messages;
    Statement query(m_database,
                    "SELECT messages.id, coalesce(name, ''), text, link, linkname, action"
                    " FROM messages LEFT JOIN accounts ON accounts.id = account ORDER BY messages.id");
    while (query.Step())
        messages.push_back(
            {query.Int(0), query.Text(1), query.Text(2), query.Text(3), query.Text(4), query.Text(5)});
    return messages;
}

bool Accounts::WithdrawMessage(std::int64_t id)
{
    const auto lock = m_database.Lock();
    Statement(m_database, "DELETE FROM messages WHERE id = ?", id).Run();
    return m_database.Changes() != 0;
}

void Accounts::RefuseWhileGuessed(const std::string& key)
{
    const std::lock_guard lock(m_failuresMutex);
    const auto found = m_failures.find(key);
    if (found != m_failures.end() && found->second.count >= FreeFailures &&
        Now() - found->second.last < FailurePause)
        throw Failure(429, "Too many failed sign-ins. Try again in a minute.");
}

std::string Accounts::SignIn(const std::string& nameOrEmail, const std::string& password, int west)
{
    std::string stored, key = nameOrEmail.substr(0, LongestName);
    std::int64_t id = 0;
    {
        const auto lock = m_database.Lock();
        Statement query(m_database, "SELECT id, guid, password FROM accounts WHERE name = ?1 OR email = ?1",
                        nameOrEmail);
        if (query.Step())
        {
            id = query.Int(0);
            key = query.Text(1);
            stored = query.Text(2);
        }
    }
    RefuseWhileGuessed(key);
    const bool right = PasswordMatches(password, stored);
    {
        const std::lock_guard lock(m_failuresMutex);
        if (right)
            m_failures.erase(key);
        else
        {
            if (m_failures.size() >= FailuresKept)
                m_failures.clear();
            Failures& failures = m_failures[key];
            if (Now() - failures.last >= FailurePause)
                failures.count = 0;
            ++failures.count;
            failures.last = Now();
        }
    }
    if (!right)
        throw Failure(401, "Name or password is wrong.");

    std::string token = RandomHex(32);
    Transaction transaction(m_database);
    Statement(m_database, "DELETE FROM sessions WHERE expires < ?", Now()).Run();
    // Not when the password was changed since it was read.
    Statement(m_database,
              "INSERT INTO sessions (token, account, west, expires) SELECT ?, id, ?, ? FROM accounts"
              " WHERE id = ? AND password = ?",
              TokenDigest(token), west, Now() + SessionLife, id, stored)
        .Run();
    if (m_database.Changes() == 0)
        throw Failure(401, "Name or password is wrong.");
    transaction.Commit();
    return token;
}

void Accounts::SignOut(const std::string& tokenDigest)
{
    const auto lock = m_database.Lock();
    Statement(m_database, "DELETE FROM sessions WHERE token = ?", tokenDigest).Run();
}

Session Accounts::Find(const std::string& token)
{
    Session session;
    session.token = TokenDigest(token);
    const auto lock = m_database.Lock();
    Statement query(m_database,
                    "SELECT accounts.id, guid, name, email, lastName, firstName, quota, west FROM sessions"
                    " JOIN accounts ON accounts.id = account WHERE token = ? AND expires > ?",
                    session.token, Now());
    if (token.empty() || !query.Step())
        throw Failure(401, "Not signed in.");
    session.account = ReadAccount(query);
    session.west = static_cast<int>(query.Int(7));
    return session;
}

std::optional<Account> Accounts::FindAccount(const std::string& nameOrEmail, bool byName, bool byEmail)
{
    const auto lock = m_database.Lock();
    Statement query(m_database,
                    "SELECT id, guid, name, email, lastName, firstName, quota FROM accounts"
                    " WHERE (?2 AND name = ?1) OR (?3 AND email = ?1)",
                    nameOrEmail, byName ? 1 : 0, byEmail ? 1 : 0);
    if (!query.Step())
        return std::nullopt;
    return ReadAccount(query);
}

std::string Accounts::MessageDocument(const Account& account)
{
    const auto lock = m_database.Lock();
    pugi::xml_document document;
    pugi::xml_node response = document.append_child("response");
    Statement query(m_database,
                    "SELECT text, link, linkname, action FROM messages WHERE account IS NULL OR account = ?"
                    " ORDER BY id",
                    account.id);
    while (query.Step())
    {
        pugi::xml_node message = response.append_child("message");
        message.append_attribute("link") = query.Text(1).c_str();
        message.append_attribute("linkname") = query.Text(2).c_str();
        message.append_attribute("action") = query.Text(3).c_str();
        message.text() = query.Text(0).c_str();
    }
    if (!response.first_child())
        return {};
    return ToText(document);
}
} // namespace svc
