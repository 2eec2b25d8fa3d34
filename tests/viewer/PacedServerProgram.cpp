// SPDX-License-Identifier: MIT
//
// The server of the tests, for a try by hand and for measurements with other players:
//   paced_server PORT BYTES-PER-SECOND FILE [CUT-AFTER]
// The first connection breaks after CUT-AFTER bytes. Ends with its standard input.
#include "tests/viewer/PacedServer.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>

int main(int argc, char** argv)
{
    if (argc < 4 || argc > 5) {
        std::fputs("usage: paced_server PORT BYTES-PER-SECOND FILE [CUT-AFTER]\n", stderr);
        return 2;
    }
    std::ifstream file(argv[3], std::ios::binary);
    const std::string body{std::istreambuf_iterator<char>(file), {}};
    const auto answer = [&](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, body);
        reply.bytesPerSecond = std::stoll(argv[2]);
        if (argc == 5 && request.number == 0) {
            reply.cutAfter = std::stoul(argv[4]);
        }
        return reply;
    };
    const PacedServer server(answer, static_cast<uint16_t>(std::stoul(argv[1])));
    std::printf("%s\n", server.Url().c_str());
    std::fflush(stdout);
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    std::printf("%d requests, %lld bytes\n", static_cast<int>(server.Requests().size()),
                static_cast<long long>(server.BytesSent()));
    return 0;
}
