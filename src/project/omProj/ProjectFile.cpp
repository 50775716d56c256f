#include "project/omProj/Project.h"

namespace pw {
ProjectResult Project::Save(std::string_view) {
    return Finish(ProjectResult::Failed);
}
ProjectResult Project::Load(std::string_view) {
    return Finish(ProjectResult::Failed);
}
ProjectResult Project::SaveTree(std::string_view) {
    return Finish(ProjectResult::Failed);
}
ProjectResult Project::LoadTree(std::string_view) {
    return Finish(ProjectResult::Failed);
}
ProjectResult Project::Check(std::string_view) {
    return Finish(ProjectResult::Failed);
}
}  // namespace pw
