// An upload and a download as the transfer program does them, and the same bytes through the system's HTTPS
// client with nothing around it; seconds.
//   tools/with-service SERVICE tools/wine-run transfer_bench.exe up|down FOLDER-WITH-WORKING-AND-RASKO
//   DOCUMENT
//   ... bare-up FOLDER DOCUMENT MEGABYTES   of a record with one file, which stays unfinished
//   ... bare-down FOLDER MANIFEST           of a manifest with one file, which is dropped
#include "suite/rasko/program/wininetchannel.h"
#include "suite/rasko/transfer/plan.h"
#include "suite/rasko/transfer/transfer.h"
#include "tests/support/recordservice.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace
{
void SendBare(rasko::ServiceClient& client, const std::string& document, int megabytes)
{
    const rasko::UploadState state = client.BeginUpload(document);
    const std::string piece(4'000'000, 'x');
    std::int64_t offset = 0;
    while (offset < megabytes * 1'000'000LL)
        offset = client.SendPiece(state.id, state.missing.at(0).name, offset, piece, false).received;
}

void FetchBare(rasko::ServiceClient& client, const std::string& manifest)
{
    const rasko::DownloadPlan plan = rasko::ReadDownload(manifest);
    const rasko::PlannedFile& file = plan.files.at(0);
    client.Fetch(plan.number, file.serviceName, file.signature, 0, [](std::string_view) { return true; });
}
} // namespace

int main(int argc, char** argv)
{
    if (argc < 4)
        return 2;
    const std::string mode = argv[1];
    std::ostringstream data;
    data << std::ifstream(argv[3], std::ios::binary).rdbuf();
    const std::filesystem::path folder = argv[2];
    const rasko::Folders folders{folder / "working", folder / "rasko"};
    const veltest::RecordService service;
    rasko::WinInetChannel channel(service.Host());
    rasko::ServiceClient client(channel, {}, {"anna", "first secret"}, 0);
    rasko::Outcome outcome;
    std::chrono::duration<double> seconds{};
    try
    {
        client.SignIn();
        const auto start = std::chrono::steady_clock::now();
        if (mode == "bare-up")
            SendBare(client, data.str(), argc > 4 ? std::atoi(argv[4]) : 0);
        else if (mode == "bare-down")
            FetchBare(client, data.str());
        else
            outcome = rasko::RunTask({1, mode == "up", data.str()}, client, folders, nullptr);
        seconds = std::chrono::steady_clock::now() - start;
    }
    catch (const std::exception& error)
    {
        outcome = {rasko::Outcome::Hopeless, error.what()};
    }
    if (outcome.kind != rasko::Outcome::Complete)
    {
        std::fprintf(stderr, "%s\n", outcome.reason.c_str());
        return 1;
    }
    std::printf("%.3f\n", seconds.count());
    return 0;
}
