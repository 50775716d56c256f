#pragma once
// The to-do list of a project: the texts of its states and what the task explorer shows.
#include <array>
#include <string>

#include "platform/controls/Controls.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

enum class TaskStatus {
    Unknown = 0,
    NotStarted = 1,
    InProgress = 2,
    Completed = 3,
    WaitingOnSomeone = 4,
    Deferred = 5
};

extern const std::array<const char*, 6> kTaskStatuses;
extern const std::array<const char*, 3> kTaskPriorities;
extern const std::array<const char*, 11> kTaskSubjects;  ///< offered for `AssociatedWith`

std::string StatusText(int status);      ///< "" out of range
std::string PriorityText(int priority);  ///< "" out of range
/** The text of a number in a list as above, or the number itself: what another program has written
 *  is seen as it is. */
std::string ShownStatus(int status);
std::string ShownPriority(int priority);

/** A task as a row of the task explorer: name, priority, status, assigned to, complete by. Its key
 *  and tag are the task's key; a finished one is ticked and dimmed. */
ListRow TaskRow(const Task& task);
std::vector<ListColumn> TaskColumns();

/** Sets the status, and remembers the former one of a task that is completed by it. */
void SetStatus(Task& task, int status);
/** False when there is no such task. */
bool MarkTaskComplete(ProjectContext& context, const std::string& key);
/** Gives it back the status that it had; "Not started" where nobody knows. */
bool UnmarkTaskComplete(ProjectContext& context, const std::string& key);

}  // namespace pw
