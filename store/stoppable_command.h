#pragma once

// The statements of a command, as its user stops them: the first that is cancelled ends the command, and
// those that would follow are not begun. What they have written in a unit is undone (command_unit.h). One
// within another is part of it. User-interface thread.

#include "automation/error.h"

namespace vicenter::store {

class StoppableCommand {
  public:
    StoppableCommand() noexcept;
    StoppableCommand(const StoppableCommand&) = delete;
    StoppableCommand& operator=(const StoppableCommand&) = delete;
    ~StoppableCommand();

    // The command that is under way has been stopped.
    static bool IsStopped();
    // The user's wish, whoever ran the statement that made him wait.
    static void Stop();
    // An error of a statement: one that was cancelled stops the command that is under way.
    static void Note(const automation::Error& error);
    // It was too late: what the command wrote may be there.
    static void Forget();
    // Throws what a cancelled statement does when the command has been stopped.
    static void NeedGoingOn();
};

}  // namespace vicenter::store
