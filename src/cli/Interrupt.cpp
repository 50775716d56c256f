#include "cli/Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace pw::cli {

namespace {

// The one thing that a signal handler may write to.
volatile std::sig_atomic_t interrupted = 0;

void Note(int) {
    interrupted = 1;
}

}  // namespace

void WatchForInterrupts() {
    struct sigaction note = {};
    note.sa_handler = Note;
    note.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &note, nullptr);
    // What these tell comes as the error of a call as well, and there it can be told to the user.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool IsInterrupted() {
    return interrupted != 0;
}

void ThrowIfInterrupted() {
    if (IsInterrupted()) throw Interrupted();
}

}  // namespace pw::cli
