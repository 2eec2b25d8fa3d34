// SPDX-License-Identifier: MIT
#include "toolbox/threads/StackOverflow.h"

#include "toolbox/threads/Switching.h"

#include <array>
#include <csignal>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace toolbox
{
namespace
{

constexpr size_t kSignalStackBytes = size_t{64} * 1024;

struct sigaction gFormer {
};

// Nothing but write is allowed where it is called.
void Tell(std::string_view text)
{
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

void TellNumber(size_t number)
{
    std::array<char, 20> digits{};
    size_t first = digits.size();
    do {
        digits[--first] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0);
    Tell({digits.data() + first, digits.size() - first});
}

void PassOn(int signal, siginfo_t* info, void* context)
{
    if ((gFormer.sa_flags & SA_SIGINFO) != 0) {
        gFormer.sa_sigaction(signal, info, context);
    } else if (gFormer.sa_handler != SIG_DFL && gFormer.sa_handler != SIG_IGN) {
        gFormer.sa_handler(signal);
    } else {
        // The access is tried again on return, and now has its ordinary end; a signal that somebody
        // sent has to be sent again.
        sigaction(signal, &gFormer, nullptr);
        if (info->si_code <= 0) {
            raise(signal);
        }
    }
}

void OnInvalidAccess(int signal, siginfo_t* info, void* context)
{
    const StackMemory* const stack = ExecutionContext::CurrentStack();
    if (stack != nullptr && info->si_code > 0 && stack->IsInGuard(info->si_addr)) {
        Tell("vorn: stack overflow: a cooperative thread has used up its stack of ");
        TellNumber(stack->Size());
        Tell(" bytes\n");
    }
    PassOn(signal, info, context);
}

// A handler needs a stack of its own where the ordinary one is used up.
void ProvideSignalStack()
{
    stack_t present{};
    if (sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE) != 0) {
        static char* const memory = new char[kSignalStackBytes]; // as long as the process
        stack_t provided{};
        provided.ss_sp = memory;
        provided.ss_size = kSignalStackBytes;
        sigaltstack(&provided, nullptr);
    }
}

bool InstallHandler()
{
    ProvideSignalStack();
    struct sigaction action {
    };
    action.sa_sigaction = OnInvalidAccess;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    return sigaction(SIGSEGV, nullptr, &gFormer) == 0 && sigaction(SIGSEGV, &action, nullptr) == 0;
}

} // namespace

void WatchForStackOverflow()
{
    [[maybe_unused]] static const bool installed = InstallHandler();
}

} // namespace toolbox
