#include "project/Tasks.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Workspace.h"

namespace pw {

namespace {

// Pictures in the main image list.
constexpr int kTaskImage = 11;
constexpr int kFinishedTaskImage = 12;

template <std::size_t N>
std::string TextAt(const std::array<const char*, N>& texts, int index) {
    return index >= 0 && index < int(N) ? texts[std::size_t(index)] : "";
}

}  // namespace

const std::array<const char*, 6> kTaskStatuses = {
    "Unknown", "Not started", "In progress", "Completed", "Waiting on someone else", "Deferred"};
const std::array<const char*, 3> kTaskPriorities = {"Low", "Normal", "High"};
const std::array<const char*, 11> kTaskSubjects = {
    "Web site", "Project",   "Page",        "Merge variables",     "Image", "Text", "Form",
    "Links",    "eServices", "Domain name", "Web Hosting Provider"};

std::string StatusText(int status) {
    return TextAt(kTaskStatuses, status);
}

std::string PriorityText(int priority) {
    return TextAt(kTaskPriorities, priority);
}

std::vector<ListColumn> TaskColumns() {
    return {{"Name", 260},
            {"Priority", 80},
            {"Status", 140},
            {"Assigned To", 130},
            {"Complete By", 100}};
}

ListRow TaskRow(const Task& task) {
    constexpr double kNever = 1e9;  // those without a day come behind all that have one
    const bool done = task.Status == int(TaskStatus::Completed);
    const bool dated = task.CompleteBy > 0;
    ListRow row;
    row.key = task.Key;
    row.tag = task.Key;
    row.image = done ? kFinishedTaskImage : kTaskImage;
    row.checked = done;
    row.dimmed = done;
    row.cells = {task.Name, PriorityText(task.Priority), StatusText(task.Status), task.AssignedTo,
                 dated ? FormatDate(task.CompleteBy, DateStyle::ShortDate) : ""};
    row.order = {{1, task.Priority}, {2, task.Status}, {4, dated ? task.CompleteBy : kNever}};
    return row;
}

bool SetTaskStatus(ProjectContext& context, const std::string& key, TaskStatus status) {
    Task* task = context.project.Tasks().Item(key);
    if (!task) return false;
    task->Status = std::int16_t(status);
    task->Modified = context.frame.clock.Now();
    task->ModifiedBy = context.frame.system.UserName();
    context.project.IsDirty = true;
    context.workspace.RefreshTasks();
    return true;
}

bool MarkTaskComplete(ProjectContext& context, const std::string& key) {
    return SetTaskStatus(context, key, TaskStatus::Completed);
}

}  // namespace pw
