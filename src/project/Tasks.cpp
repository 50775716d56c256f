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

std::string ShownStatus(int status) {
    const std::string text = StatusText(status);
    return text.empty() ? std::to_string(status) : text;
}

std::string ShownPriority(int priority) {
    const std::string text = PriorityText(priority);
    return text.empty() ? std::to_string(priority) : text;
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
    const bool dated = task.CompleteBy != 0;
    ListRow row;
    row.key = task.Key;
    row.tag = task.Key;
    row.image = done ? kFinishedTaskImage : kTaskImage;
    row.checked = done;
    row.dimmed = done;
    row.cells = {task.Name, ShownPriority(task.Priority), ShownStatus(task.Status), task.AssignedTo,
                 dated ? FormatDate(task.CompleteBy, DateStyle::ShortDate) : ""};
    row.order = {{1, task.Priority}, {2, task.Status}, {4, dated ? task.CompleteBy : kNever}};
    return row;
}

void SetStatus(Task& task, int status) {
    constexpr int kCompleted = int(TaskStatus::Completed);
    if (status == task.Status) return;
    task.FormerStatus.reset();
    if (status == kCompleted) task.FormerStatus = task.Status;
    task.Status = status;
}

namespace {

bool ChangeStatus(ProjectContext& context, Task* task, int status) {
    if (!task) return false;
    SetStatus(*task, status);
    task->Modified = context.frame.clock.Now();
    task->ModifiedBy = context.frame.system.UserName();
    context.project.IsDirty = true;
    context.workspace.RefreshTasks();
    return true;
}

}  // namespace

bool MarkTaskComplete(ProjectContext& context, const std::string& key) {
    return ChangeStatus(context, context.project.Tasks().Item(key), int(TaskStatus::Completed));
}

bool UnmarkTaskComplete(ProjectContext& context, const std::string& key) {
    Task* task = context.project.Tasks().Item(key);
    const int former = task ? task->FormerStatus.value_or(int(TaskStatus::NotStarted)) : 0;
    return ChangeStatus(context, task, former);
}

}  // namespace pw
