#pragma once
// What stands behind a project's references; exchanged whole when a project is loaded or cleared.
#include "project/omProj/Database.h"
#include "project/omProj/Project.h"

namespace pw {

struct Project::Contents {
    explicit Contents(Project& owner) { tree.project = &owner; }

    TreeContext tree;
    pw::WebSites webSites{tree};
    pw::Attachments attachments{""};
    pw::MergeVariables mergeVariables;
    pw::Tasks tasks;
    pw::PublishHistory publishHistory;
    AddInRecords addIns;
    std::unique_ptr<Page> defaultTemplate;
    /** Of the project file as this object left it behind: as long as it is still that one, what
     *  is known about its content holds. */
    FileMark mark;
};

}  // namespace pw
