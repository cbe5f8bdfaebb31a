// An upload and a download as the transfer program does them, timed.
//   tools/with-service SERVICE tools/wine-run transfer_bench.exe up|down FOLDER-WITH-WORKING-AND-RASKO
//   RECORD-OR-MANIFEST
#include "suite/rasko/program/wininetchannel.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/support/recordservice.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    std::ostringstream data;
    data << std::ifstream(argv[3], std::ios::binary).rdbuf();
    const std::filesystem::path folder = argv[2];
    const rasko::Folders folders{folder / "working", folder / "rasko"};
    const veltest::RecordService service;
    rasko::WinInetChannel channel(service.Host());
    rasko::ServiceClient client(channel, {}, {"anna", "first secret"}, 0);
    const auto start = std::chrono::steady_clock::now();
    const rasko::Outcome outcome =
        rasko::RunTask({1, std::string(argv[1]) == "up", data.str()}, client, folders, nullptr);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (outcome.kind != rasko::Outcome::Complete)
    {
        std::fprintf(stderr, "%s\n", outcome.reason.c_str());
        return 1;
    }
    std::printf("%.3f\n", seconds.count());
    return 0;
}
