#pragma once

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <string>
#include <vector>

namespace veltest
{

// Runs SQL on a database file as another program would; answers the first column of what it selects, in
// UTF-8.
inline std::vector<std::string> RunSql(const std::string& path, const std::string& sql)
{
    std::vector<std::string> values;
    const auto row = [](void* out, int, char** columns, char**) {
        static_cast<std::vector<std::string>*>(out)->emplace_back(columns[0]);
        return 0;
    };
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), row, &values, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
    return values;
}

} // namespace veltest
