// The test server as a program of its own, for what asks a server by its connect string alone: makes
// databases in the folder that it is given, prints the connect string of its database "master" and serves
// until its standard input ends.
//
// Usage: tds_server FOLDER

#include <cstdio>
#include <exception>
#include <filesystem>

#include "tds_server/server.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: tds_server FOLDER\n", stderr);
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        vicenter::tds_server::Server server;
        server.KeepDatabasesIn(folder);
        server.AddDatabase("master", folder / "master.vas");
        std::puts(server.ConnectText("master").c_str());
        std::fflush(stdout);
        while (std::getchar() != EOF)
            continue;
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tds_server: %s\n", error.what());
        return 1;
    }
}
