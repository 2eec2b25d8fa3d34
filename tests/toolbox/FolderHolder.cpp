// SPDX-License-Identifier: MIT
//
// A process with a temporary folder of its own, for tests that need another one: makes the folder
// with a file "held" in it, then answers each line of its input with a result code.
#include "toolbox/files/Files.h"

#include "toolbox/Errors.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

SInt16 gVolume = 0;
SInt32 gDirectory = 0;

OSErr Find()
{
    return FindFolder(kOnSystemDisk, kTemporaryFolderType, kCreateFolder, &gVolume, &gDirectory);
}

FSSpec Held()
{
    FSSpec spec{};
    spec.vRefNum = gVolume;
    spec.parID = gDirectory;
    std::memcpy(spec.name, "\4held", 5);
    return spec;
}

OSErr Create()
{
    const FSSpec spec = Held();
    return FSpCreate(&spec, 0, 0, smSystemScript);
}

OSErr LookUp()
{
    FSSpec spec = Held();
    CInfoPBRec block{};
    block.ioNamePtr = spec.name;
    block.ioDirID = spec.parID;
    return PBGetCatInfoSync(&block);
}

OSErr Open()
{
    const FSSpec spec = Held();
    SInt16 refNum = 0;
    return FSpOpenDF(&spec, fsRdPerm, &refNum);
}

// A forked child that ends in the ordinary way; its exit status.
OSErr RunForkedChild()
{
    const pid_t child = fork();
    if (child == 0) {
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return static_cast<OSErr>(status);
}

OSErr BecomeItselfAnew()
{
    std::cout << noErr << std::endl;
    execl("/proc/self/exe", "/proc/self/exe", nullptr);
    return ioErr;
}

OSErr Answer(const std::string& request)
{
    return request == "find"     ? Find()
           : request == "create" ? Create()
           : request == "lookup" ? LookUp()
           : request == "open"   ? Open()
           : request == "exec"   ? BecomeItselfAnew()
                                 : RunForkedChild();
}

} // namespace

int main()
{
    const OSErr err = Find();
    std::cout << (err != noErr ? err : Create()) << std::endl;
    std::string request;
    while (std::getline(std::cin, request)) {
        std::cout << Answer(request) << std::endl;
    }
    return 0;
}
