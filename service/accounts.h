// Who may use the service: accounts, sessions and what an administrator tells them.
#pragma once

#include "service/database.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace svc
{
struct Account
{
    std::int64_t id = 0;
    std::string guid, name, email, last, first;
    std::int64_t quota = 0; ///< bytes
};

/// A request's user.
struct Session
{
    Account account;
    int west = 0;      ///< minutes that the user's clock lies behind UTC
    std::string token; ///< digest, as stored
};

struct Message
{
    std::int64_t id = 0;
    std::string account; ///< name; empty: for all
    std::string text, link, linkname, action;
};

/// Kept in the database; every thread may call.
class Accounts
{
public:
    explicit Accounts(Database& database) : m_database(database)
    {
    }

    // For the administrator. Failures are Failure with a sentence.
    void Add(const Account& account, const std::string& password);
    void SetPassword(const std::string& name, const std::string& password); ///< ends the account's sessions
    void Remove(const std::string& name); ///< with its records, once no service holds their files
    std::vector<Account> List();
    void AddMessage(const Message& message);
    std::vector<Message> Messages();
    bool WithdrawMessage(std::int64_t id);

    /// Opens a session and answers its token. Throws Failure 401, or 429 for a minute after too many
    /// failures.
    std::string SignIn(const std::string& nameOrEmail, const std::string& password, int west);
    void SignOut(const std::string& tokenDigest);
    /// Throws Failure 401 when the token opens no session.
    Session Find(const std::string& token);
    /// By name, e-mail or both.
    std::optional<Account> FindAccount(const std::string& nameOrEmail, bool byName, bool byEmail);
    /// The messages in force for an account as "<response>...", empty without any.
    std::string MessageDocument(const Account& account);

private:
    struct Failures
    {
        int count = 0;
        std::int64_t last = 0;
    };
    void RefuseWhileGuessed(const std::string& key);

    Database& m_database;
    std::mutex m_failuresMutex;
    std::map<std::string, Failures> m_failures; ///< by account GUID, or the name that was tried
};
} // namespace svc
