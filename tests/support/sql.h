#pragma once

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <functional>
#include <string>
#include <vector>

namespace veltest
{

// Takes a row of an answer: how many columns, their values in UTF-8, null where there is none, their names.
using SqlRow = std::function<void(int, char**, char**)>;

// Runs SQL on a database file as another program would.
inline void RunSql(const std::string& path, const std::string& sql, const SqlRow& take)
{
    const auto row = [](void* out, int count, char** values, char** names) {
        (*static_cast<const SqlRow*>(out))(count, values, names);
        return 0;
    };
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), row, const_cast<SqlRow*>(&take), nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
}

// Answers the first column of what it selects.
inline std::vector<std::string> RunSql(const std::string& path, const std::string& sql)
{
    std::vector<std::string> values;
    RunSql(path, sql, [&](int, char** row, char**) { values.emplace_back(row[0]); });
    return values;
}

} // namespace veltest
