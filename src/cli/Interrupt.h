#pragma once
#include <stdexcept>

namespace pw::cli {

/** The user has pressed Ctrl+C, or the machine is going down. */
struct Interrupted : std::runtime_error {
    Interrupted() : std::runtime_error("Interrupted.") {}
};

/** From now on the first such signal only makes a note, so that the command can tidy up; the second
 *  ends the program. A reader that has gone away ends nothing, nor does a limit on the size of
 *  files. */
void WatchForInterrupts();
bool IsInterrupted();
/** For the places where work can stop. */
void ThrowIfInterrupted();

}  // namespace pw::cli
